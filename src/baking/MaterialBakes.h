#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <MaterialTranslation/Bakes.h>

/// @file
/// Normal maps for the bump textures of materials.
namespace vyr::MaterialTranslation::baking
{

struct BakeOutcome
{
    /// The image's bytes as a file has them; empty when it could not be made: its source is missing, unreadable or
    /// cannot be decoded, its parameters give no numbers, or there is no memory.
    std::vector<unsigned char> file;
    /// Why there is none, in one line with the file's name.
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
};

/// A noise texture that a material uses as bump.
struct NoiseBumpBake
{
    /// Width and height are those of the normal map; its own limits and threads do not count.
    NoiseBakeOptions noise{};
    /// Strength of the relief; 0 leaves the slopes as they are.
    float bumpAmount = 0.0f;
};

/// Bakes the first channel of a bump image with the image's own attributes as parameters, which as a rule have
/// none that count: the strength is 1. Nothing is thrown.
///
/// @param place  Where the image will be; the extension names the format.
BakeOutcome bakeBump(const BumpBake& bake, const BakeSettings& settings,
                     const std::filesystem::path& place);

/// Bakes noise, and from it a normal map. Nothing is thrown.
///
/// @param place  Where the image will be, for messages; the extension names the format.
BakeOutcome bakeNoiseBump(const NoiseBumpBake& bake, const BakeSettings& settings,
                          const std::filesystem::path& place);

} // namespace vyr::MaterialTranslation::baking
