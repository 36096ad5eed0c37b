#pragma once

#include <array>
#include <cstdint>

#include <MaterialTranslation/Export.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace vyr::MaterialTranslation
{

/// An image and its placement on a surface, for overlay materials. A plain value.
struct VYR_MTLX_API TextureInfo
{
    TextureInfo();
    TextureInfo(const TextureInfo& other);
    TextureInfo(TextureInfo&& other) noexcept;
    TextureInfo& operator=(const TextureInfo& other);
    TextureInfo& operator=(TextureInfo&& other) noexcept;
    ~TextureInfo();

    /// Image file, UTF-8, absolute. A relative path is written as it is, with a warning, and not gathered.
    kelvor::platform::core::string::UTF8String path;
    /// Shift of the image on the surface along U and V, in `unit`.
    std::array<float, 2> realWorldOffset{0.0f, 0.0f};
    /// Size of the image on the surface along U and V, in `unit`.
    std::array<float, 2> realWorldScale{1.0f, 1.0f};
    /// Length unit of the two above: 0 nanometer, 1 micron, 2 millimeter, 3 centimeter,
    /// 4 inch, 5 foot, 6 yard, 7 meter, 8 kilometer, 9 mile; any other value counts as centimeter.
    std::int32_t unit = 3;
    /// Shift along U and V in texture space, without unit.
    std::array<float, 2> uvOffset{0.0f, 0.0f};
    /// Scale along U and V in texture space, without unit.
    std::array<float, 2> uvScale{1.0f, 1.0f};
    /// Rotation of the image in degrees.
    float rotation = 0.0f;
    /// Carried along for the host; the converter does not read it.
    std::int32_t auxValue = 0;
};

} // namespace vyr::MaterialTranslation
