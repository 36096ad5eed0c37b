#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace vyr::assetlib
{

/// An image and its placement on a surface, as an overlay names it. Members that the file leaves out
/// have the defaults below.
struct OverlayTexture
{
    /// UTF-8: the absolute path of the image, or the text as written when no such file was found.
    std::string path;
    /// Shift and size of the image on the surface along U and V, in `unit`.
    std::array<float, 2> realWorldOffset = {0.0f, 0.0f};
    std::array<float, 2> realWorldScale = {1.0f, 1.0f};
    /// Length unit of the two above: 0 nanometer, 1 micron, 2 millimeter, 3 centimeter, 4 inch,
    /// 5 foot, 6 yard, 7 meter, 8 kilometer, 9 mile.
    std::int32_t unit = 3;
    /// Shift and scale in texture space, without unit.
    std::array<float, 2> uvOffset = {0.0f, 0.0f};
    std::array<float, 2> uvScale = {1.0f, 1.0f};
    /// In degrees.
    float rotation = 0.0f;
};

/// What a decal is built from.
struct Decal
{
    std::int32_t kind = 1;
    OverlayTexture texture;
    std::int32_t value0 = 0;
    std::int32_t value1 = 0;
    std::int32_t value2 = 0;
};

/// What a thread is built from.
struct Thread
{
    std::optional<OverlayTexture> threadTexture;
    std::optional<OverlayTexture> normalTexture;
    bool flag = false;
    /// Red, green, blue, alpha, linear Rec.709.
    std::optional<std::array<float, 4>> baseMaterialColor;
    /// Planes a x + b y + c z + d = 0 as a, b, c, d.
    std::optional<std::array<float, 4>> startClippingPlane;
    std::optional<std::array<float, 4>> endClippingPlane;
};

/// One decal or thread request of a file.
struct Overlay
{
    /// Names the material that is built; not necessarily unique.
    std::string name;
    /// The file as it was named to load().
    std::string file;
    /// JSON pointer of the overlay in its file, such as "/overlays/0".
    std::string pointer;
    std::variant<Decal, Thread> content;
};

} // namespace vyr::assetlib
