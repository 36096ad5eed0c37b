#pragma once

#include <cstdint>

namespace vyr::MaterialTranslation
{

/// Which converter of the registry builds an overlay material. The values 1 and 2 are reserved; a
/// host may register converters for values of its own.
enum class ConversionType : std::int32_t
{
    /// Nothing is registered for it.
    Undefined = 0,
    /// MaterialInfo::payload points to a DecalInfo.
    Decal = 3,
    /// MaterialInfo::payload points to a ThreadInfo.
    Thread = 4,
};

} // namespace vyr::MaterialTranslation
