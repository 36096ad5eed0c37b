#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <MaterialTranslation/Export.h>

namespace vyr::MaterialTranslation
{

/// How much a diagnostic matters.
enum class Severity : std::int32_t
{
    /// The asset says something that the document does not, or says it differently.
    Warning = 1,
    /// The operation failed because of it.
    Error = 2,
};

/// What happened, in a form that programs can rely on: neither the numbers nor the names
/// (diagnosticCodeName) change their meaning. Errors are below 1000, warnings from 1000.
/// docs/diagnostics.md explains each.
enum class DiagnosticCode : std::int32_t
{
    PropertyType = 1,
    PropertyInvalid = 2,
    ValueNotFinite = 3,
    NoGenericProperties = 4,
    UnknownSchema = 5,
    UnhandledTextureSchema = 6,
    LegacyUnavailable = 7,
    NameInvalid = 8,
    NameTaken = 9,
    NoDocument = 10,
    OutputDirectory = 11,
    CloneFailed = 12,
    NothingRegistered = 13,
    NameEmpty = 14,
    Exception = 15,
    NoConverter = 16,

    PropertyUnread = 1001,
    NameDuplicate = 1002,
    TextureNotTranslated = 1003,
    TexturePathEmpty = 1004,
    TextureFileMissing = 1005,
    TextureUnused = 1006,
    ConnectionsIgnored = 1007,
    FadeIgnored = 1008,
    CutoutIgnored = 1009,
    UnitUnknown = 1010,
    ChoiceUnknown = 1011,
    TextChanged = 1012,
    ValueAdjusted = 1013,
    BakeFailed = 1014,
    TextureNameRefused = 1015,
    TextureNotGathered = 1016,
    TextureRenamed = 1017,
    TextureCaseDiffers = 1018,
    UnitIgnored = 1019,
    TintIgnored = 1020,
    UnitMisfit = 1021,
};

/// One thing worth telling about a conversion. All texts are UTF-8 and owned by the record.
struct Diagnostic
{
    Severity severity = Severity::Warning;
    DiagnosticCode code = DiagnosticCode::Exception;
    /// Identifier of the material's asset; empty when the operation had none.
    std::string asset;
    /// The property that it is about, with those of connected textures behind a slash:
    /// "generic_diffuse" or "generic_diffuse/texture_WAngle"; empty when it is about none.
    std::string property;
    /// What a person needs to know. For a property of the wrong type, the name of the type that was
    /// expected, such as "ePropertyType_Scalar".
    std::string text;
};

/// The diagnostics of the calling thread's last call of a MaterialXConverter operation that can
/// fail (RegisterAssetForConversion, SerializeRegisteredAssetsForConversion, TranslateToMaterialX,
/// Convert), in the order in which they arose. Filled also when an exception left the call. The
/// reference is valid until the thread's next such call or end.
VYR_MTLX_API const std::vector<Diagnostic>& lastDiagnostics();

/// The stable name of a code, such as "property-type"; static storage. "unknown" for a number that
/// is no code.
VYR_MTLX_API const char* diagnosticCodeName(DiagnosticCode code);

/// Number of assets that are registered and not yet serialised. To be called under the same
/// one-thread rule as registration.
VYR_MTLX_API std::size_t registeredAssetCount();

/// The library's version, such as "1.0.0"; static storage.
VYR_MTLX_API const char* libraryVersion();

} // namespace vyr::MaterialTranslation
