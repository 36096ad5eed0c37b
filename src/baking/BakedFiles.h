#pragma once

#include <MaterialTranslation/Bakes.h>

#include <filesystem>
#include <string>
#include <vector>

namespace vyr::MaterialTranslation::baking
{
/// A normal map that was baked for a material.
struct BakedFile
{
    BakeResult result;
    /// The written file, in the folder that was given; empty after a failure.
    std::filesystem::path path;
};

/// A bump image of a material.
struct BumpImage
{
    std::filesystem::path image;
    /// The normal map goes here, as the image's name without its last extension + "_normalmap.png". Made when
    /// missing.
    std::filesystem::path folder;
    /// Files that must stay; a normal map that would replace one gets a number into its name.
    std::vector<std::filesystem::path> kept;
    /// Set as "texture_RealWorldScaleX" and "texture_RealWorldScaleY" of the bake, which does not use them.
    float realWorldScaleX = 0.0f;
    float realWorldScaleY = 0.0f;
    ImageLimits limits;
    int threads = 0;
};

/// Bakes the first channel of a bump image with the image's own attributes as parameters, which as a rule have
/// none that count: the strength is 1. Nothing is thrown.
BakedFile bakeBumpImage(const BumpImage& bump);

/// A noise texture that a material uses as bump.
struct NoiseBump
{
    /// Width and height are those of the normal map.
    NoiseBakeOptions noise;
    /// Strength of the relief; 0 leaves the slopes as they are.
    float bumpAmount = 0.0f;
    /// The normal map goes here, as nodeName + "_" + width + "normal_map.png". Made when missing.
    std::filesystem::path folder;
    /// As of a bump image.
    std::vector<std::filesystem::path> kept;
    std::string nodeName;
};

/// Bakes noise, and from it a normal map. Nothing is thrown.
BakedFile bakeNoiseBump(const NoiseBump& bump);
} // namespace vyr::MaterialTranslation::baking
