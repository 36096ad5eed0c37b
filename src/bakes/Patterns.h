#pragma once

#include <array>
#include <filesystem>
#include <memory>
#include <string>

#include "bakes/patterns/Pattern.h"

/// @file
/// Images of the procedural textures.
namespace vyr::MaterialTranslation::bakes
{

struct Pattern;

/// How an image lies on the surface, as the node that reads it would place it. Lengths in metres.
struct ImagePlacement
{
    std::array<float, 2> offset{0.0f, 0.0f};
    std::array<float, 2> size{1.0f, 1.0f};
    std::array<float, 2> uvOffset{0.0f, 0.0f};
    std::array<float, 2> uvScale{1.0f, 1.0f};
    std::array<bool, 2> repeats{true, true};
    float degrees = 0.0f; ///< counter-clockwise about the lower left corner
};

/// An image, or another pattern, in place of one of a pattern's two colours.
struct ColorImage
{
    std::string property; ///< of the material that it drives, for messages
    std::filesystem::path file;
    std::shared_ptr<const Pattern> pattern; ///< null: the file
    ImagePlacement placement;
};

struct Pattern
{
    /// Place among PatternKinds.
    std::size_t kind = 0;
    /// Colours are linear where the pattern is used as colour.
    PatternValues values;
    int width = 0;
    int height = 0;
    /// What the image covers on the surface, in metres.
    ImagePlacement placement;
    std::array<std::shared_ptr<const ColorImage>, 2> images;
};

/// What the pixels of a pattern are.
enum class PatternUse
{
    Color,  ///< linear, three channels; the codes of sRGB where the format has whole numbers
    Number, ///< the colours' luminance, one channel
    Relief, ///< normals, of heights that are that number (tiles: high between low joints)
};

/// A procedural texture as an image.
struct PatternBake
{
    std::shared_ptr<const Pattern> pattern;
    PatternUse use{};
    /// Strength of a relief along x and y for the image as a whole, as that of a noise is: half its depth, in widths
    /// and heights of the image. 0 leaves slopes as they are from pixel to pixel.
    std::array<float, 2> strength{};
};

} // namespace vyr::MaterialTranslation::bakes
