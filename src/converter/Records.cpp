#include <MaterialTranslation/ConverterOptions.h>
#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/MaterialInfo.h>
#include <MaterialTranslation/ThreadInfo.h>

namespace vyr::MaterialTranslation
{

// The compiler's own member-wise operations, compiled here so that hosts of any compiler call one
// set of them.

ConverterOptions::ConverterOptions() = default;
ConverterOptions::ConverterOptions(const ConverterOptions& other) = default;
ConverterOptions::ConverterOptions(ConverterOptions&& other) noexcept = default;
ConverterOptions& ConverterOptions::operator=(const ConverterOptions& other) = default;
ConverterOptions& ConverterOptions::operator=(ConverterOptions&& other) noexcept = default;
ConverterOptions::~ConverterOptions() = default;

TextureInfo::TextureInfo() = default;
TextureInfo::TextureInfo(const TextureInfo& other) = default;
TextureInfo::TextureInfo(TextureInfo&& other) noexcept = default;
TextureInfo& TextureInfo::operator=(const TextureInfo& other) = default;
TextureInfo& TextureInfo::operator=(TextureInfo&& other) noexcept = default;
TextureInfo::~TextureInfo() = default;

DecalInfo::DecalInfo() = default;
DecalInfo::DecalInfo(const DecalInfo& other) = default;
DecalInfo::DecalInfo(DecalInfo&& other) noexcept = default;
DecalInfo& DecalInfo::operator=(const DecalInfo& other) = default;
DecalInfo& DecalInfo::operator=(DecalInfo&& other) noexcept = default;
DecalInfo::~DecalInfo() = default;

ThreadInfo::ThreadInfo() = default;
ThreadInfo::ThreadInfo(const ThreadInfo& other) = default;
ThreadInfo::ThreadInfo(ThreadInfo&& other) noexcept = default;
ThreadInfo& ThreadInfo::operator=(const ThreadInfo& other) = default;
ThreadInfo& ThreadInfo::operator=(ThreadInfo&& other) noexcept = default;
ThreadInfo::~ThreadInfo() = default;

MaterialInfo::MaterialInfo() = default;
MaterialInfo::MaterialInfo(const MaterialInfo& other) = default;
MaterialInfo::MaterialInfo(MaterialInfo&& other) noexcept = default;
MaterialInfo& MaterialInfo::operator=(const MaterialInfo& other) = default;
MaterialInfo& MaterialInfo::operator=(MaterialInfo&& other) noexcept = default;
MaterialInfo::~MaterialInfo() = default;

const char* diagnosticCodeName(DiagnosticCode code)
{
    switch (code)
    {
#define VYR_MTLX_NAME(constant, number, name)                                                      \
    case DiagnosticCode::constant:                                                                 \
        return name;
        VYR_MTLX_DIAGNOSTIC_CODES(VYR_MTLX_NAME)
#undef VYR_MTLX_NAME
    }
    return "unknown";
}

const char* libraryVersion()
{
    return VYR_MTLX_VERSION;
}

} // namespace vyr::MaterialTranslation
