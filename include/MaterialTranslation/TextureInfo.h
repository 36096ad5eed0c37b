#pragma once

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

    /// Image file, UTF-8.
    kelvor::platform::core::string::UTF8String path;
    /// Shift of the image on the surface along U and V, in `unit`.
    float realWorldOffsetU = 0.0f;
    float realWorldOffsetV = 0.0f;
    /// Size of the image on the surface along U and V, in `unit`.
    float realWorldScaleU = 1.0f;
    float realWorldScaleV = 1.0f;
    /// Length unit of the four values above: 0 nanometer, 1 micron, 2 millimeter, 3 centimeter,
    /// 4 inch, 5 foot, 6 yard, 7 meter, 8 kilometer, 9 mile; any other value counts as centimeter.
    std::int32_t unit = 3;
    /// Shift in texture space, without unit.
    float uvOffsetU = 0.0f;
    float uvOffsetV = 0.0f;
    /// Scale in texture space, without unit.
    float uvScaleU = 1.0f;
    float uvScaleV = 1.0f;
    /// Rotation of the image in degrees.
    float rotation = 0.0f;
    /// Carried along for the host; the converter does not read it.
    std::int32_t auxValue = 0;
};

} // namespace vyr::MaterialTranslation
