#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <MaterialTranslation/Bakes.h>

/// @file
/// Normal maps for the bump textures of materials.
namespace vyr::MaterialTranslation::baking
{

enum class BakeStatus
{
    Done,
    /// The image could not be made: its source is missing, unreadable or cannot be decoded, its
    /// parameters give no numbers, or there is no memory.
    NotBaked,
    /// The image was made but could not be written.
    NotWritten,
};

struct BakeOutcome
{
    BakeStatus status = BakeStatus::NotBaked;
    /// Why there is no file, in one line with the file's name; empty when all is done.
    std::string message;
    /// What was done differently from what was asked for, one line each.
    std::vector<std::string> warnings;
};

/// A bump image of a material.
struct BumpBake
{
    std::filesystem::path image;
    /// Set as "texture_RealWorldScaleX" and "texture_RealWorldScaleY" of the bake, which does not use them.
    float realWorldScaleX = 0.0f;
    float realWorldScaleY = 0.0f;
    ImageLimits limits{};
    /// 0: as many threads as OpenImageIO uses by default; 1: only the calling thread.
    int threads = 0;
};

/// A noise texture that a material uses as bump.
struct NoiseBumpBake
{
    /// Width and height are those of the normal map.
    NoiseBakeOptions noise{};
    /// Strength of the relief; 0 leaves the slopes as they are.
    float bumpAmount = 0.0f;
};

/// Bakes the first channel of a bump image with the image's own attributes as parameters, which as a rule have
/// none that count: the strength is 1. Nothing is thrown, and after a failure nothing new is left.
///
/// @param destination  In an existing folder; the extension names the format.
BakeOutcome bakeBump(const BumpBake& bake, const std::filesystem::path& destination);

/// Bakes noise, and from it a normal map. Nothing is thrown, and after a failure nothing new is left.
///
/// @param destination  In an existing folder; the extension names the format.
BakeOutcome bakeNoiseBump(const NoiseBumpBake& bake, const std::filesystem::path& destination);

} // namespace vyr::MaterialTranslation::baking
