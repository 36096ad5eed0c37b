#pragma once

#include <MaterialTranslation/ConversionType.h>
#include <MaterialTranslation/Export.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace vyr::MaterialTranslation
{

/// A request for an overlay material. Copies and moves copy the pointer, never what it points to.
struct VYR_MTLX_API MaterialInfo
{
    MaterialInfo();
    MaterialInfo(const MaterialInfo& other);
    MaterialInfo(MaterialInfo&& other) noexcept;
    MaterialInfo& operator=(const MaterialInfo& other);
    MaterialInfo& operator=(MaterialInfo&& other) noexcept;
    ~MaterialInfo();

    /// Name of the material to build, the base of every element name of its document.
    kelvor::platform::core::string::UTF8String name;
    /// Selects the registered converter, and with it what `payload` points to.
    ConversionType type = ConversionType::Undefined;
    /// A DecalInfo or a ThreadInfo, or what a registered converter expects. Borrowed: the caller
    /// keeps it alive during MaterialXConverter::Convert; the library never frees it.
    void* payload = nullptr;
};

} // namespace vyr::MaterialTranslation
