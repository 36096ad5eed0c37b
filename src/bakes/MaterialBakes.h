#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include <MaterialTranslation/Bakes.h>

#include "bakes/Patterns.h"

/// @file
/// What can be baked for a material, as records.
namespace vyr::MaterialTranslation::bakes
{

/// An image in place of a pattern's colour that is missing, unreadable or cannot be decoded.
struct DroppedColorImage
{
    std::string property; ///< as ColorImage has it
    std::string reason;
};

struct BakeOutcome
{
    /// The image's bytes as a file has them; empty when it could not be made: its source is missing, unreadable or
    /// cannot be decoded, its parameters give no numbers, there is no memory, or the bakes' library is missing.
    std::vector<unsigned char> file;
    /// The image stands in its place already, of the same bake, and there is no file here.
    bool isKept = false;
    /// Why there is none, in one line with the file's name.
    std::string message;
    /// What was done differently from what was asked for, one line each.
    std::vector<std::string> warnings;
    /// Their colours are plain.
    std::vector<DroppedColorImage> droppedImages;
};

/// The first channel of a bump image as a normal map, with the image's own attributes as parameters, which as a
/// rule have none that count: the strength is 1.
struct BumpBake
{
    std::filesystem::path image;
    /// Set as "texture_RealWorldScaleX" and "texture_RealWorldScaleY" of the bake, which does not use them.
    float realWorldScaleX = 0.0f;
    float realWorldScaleY = 0.0f;
};

/// A noise texture that a material uses as bump, as a normal map.
struct NoiseBumpBake
{
    /// Width and height are those of the normal map; its own limits and threads do not count.
    NoiseBakeOptions noise{};
    /// Strength of the relief; 0 leaves the slopes as they are.
    float bumpAmount = 0.0f;
};

/// All of them. A further one is a record here and a function `run` for it in baking/MaterialBakes.cpp.
using MaterialBake = std::variant<BumpBake, NoiseBumpBake, PatternBake>;

/// Bakes an image for a material, unless its place has it already. Nothing is thrown.
///
/// @param place  Where the image will be; the extension names the format.
BakeOutcome bakeForMaterial(const MaterialBake& bake, const BakeSettings& settings,
                            const std::filesystem::path& place);

} // namespace vyr::MaterialTranslation::bakes
