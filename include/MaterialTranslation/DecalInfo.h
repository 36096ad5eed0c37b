#pragma once

#include <cstdint>

#include <MaterialTranslation/Export.h>
#include <MaterialTranslation/TextureInfo.h>

namespace vyr::MaterialTranslation
{

/// What a decal material is built from. A plain value.
struct VYR_MTLX_API DecalInfo
{
    DecalInfo();
    DecalInfo(const DecalInfo& other);
    DecalInfo(DecalInfo&& other) noexcept;
    DecalInfo& operator=(const DecalInfo& other);
    DecalInfo& operator=(DecalInfo&& other) noexcept;
    ~DecalInfo();

    /// Variant of the decal: 2 and 3 share one, every other value takes the other.
    std::int32_t kind = 1;
    /// The decal's image and its placement.
    TextureInfo texture;
    /// Parameters of the decal builder.
    std::int32_t value0 = 0;
    std::int32_t value1 = 0;
    std::int32_t value2 = 0;
};

} // namespace vyr::MaterialTranslation
