#pragma once

#include <cstdint>

#include <MaterialTranslation/Export.h>
#include <MaterialTranslation/TextureInfo.h>

namespace vyr::MaterialTranslation
{

/// What a decal material is built from: an image that sticks on a surface. A plain value.
struct VYR_MTLX_API DecalInfo
{
    DecalInfo();
    DecalInfo(const DecalInfo& other);
    DecalInfo(DecalInfo&& other) noexcept;
    DecalInfo& operator=(const DecalInfo& other);
    DecalInfo& operator=(DecalInfo&& other) noexcept;
    ~DecalInfo();

    /// What of the image shows. 2 and 3: all but the key colour. Every other value: what the image's alpha
    /// says, and all of an image without alpha (but in OSL, where a missing alpha is 0).
    std::int32_t kind = 1;
    /// The decal's image, sRGB, and its placement. It shows once; around it nothing does. Without a path
    /// nothing is built.
    TextureInfo texture;
    /// Red, green and blue of the key colour, from 0 to 255, as the image stores them; for kinds 2 and 3. One
    /// step in each channel is still the key; four steps in one channel are not.
    std::int32_t value0 = 0;
    std::int32_t value1 = 0;
    std::int32_t value2 = 0;
};

} // namespace vyr::MaterialTranslation
