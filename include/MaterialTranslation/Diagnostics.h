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

/// All codes: constant, number, stable name. Errors are below 1000, warnings from 1000.
/// docs/diagnostics.md explains each.
// clang-format off
#define VYR_MTLX_DIAGNOSTIC_CODES(X)                                            \
    X(PropertyType, 1, "property-type")                                         \
    X(PropertyInvalid, 2, "property-invalid")                                   \
    X(ValueNotFinite, 3, "value-not-finite")                                    \
    X(NoGenericProperties, 4, "no-generic-properties")                          \
    X(UnknownSchema, 5, "unknown-schema")                                       \
    X(UnhandledTextureSchema, 6, "unhandled-texture-schema")                    \
    X(LegacyUnavailable, 7, "legacy-unavailable")                               \
    X(NameInvalid, 8, "name-invalid")                                           \
    X(NameTaken, 9, "name-taken")                                               \
    X(NoDocument, 10, "no-document")                                            \
    X(OutputDirectory, 11, "output-directory")                                  \
    X(CloneFailed, 12, "clone-failed")                                          \
    X(NothingRegistered, 13, "nothing-registered")                              \
    X(NameEmpty, 14, "name-empty")                                              \
    X(Exception, 15, "exception")                                               \
    X(NoConverter, 16, "no-converter")                                          \
    X(ImageNotWritten, 17, "image-not-written")                                 \
    X(PropertyUnread, 1001, "property-unread")                                  \
    X(NameDuplicate, 1002, "name-duplicate")                                    \
    X(TextureNotTranslated, 1003, "texture-not-translated")                     \
    X(TexturePathEmpty, 1004, "texture-path-empty")                             \
    X(TextureFileMissing, 1005, "texture-file-missing")                         \
    X(TextureUnused, 1006, "texture-unused")                                    \
    X(ConnectionsIgnored, 1007, "connections-ignored")                          \
    X(FadeIgnored, 1008, "fade-ignored")                                        \
    X(CutoutIgnored, 1009, "cutout-ignored")                                    \
    X(UnitUnknown, 1010, "unit-unknown")                                        \
    X(ChoiceUnknown, 1011, "choice-unknown")                                    \
    X(TextChanged, 1012, "text-changed")                                        \
    X(ValueAdjusted, 1013, "value-adjusted")                                    \
    X(BakeFailed, 1014, "bake-failed")                                          \
    X(TextureNameRefused, 1015, "texture-name-refused")                         \
    X(TextureNotGathered, 1016, "texture-not-gathered")                         \
    X(TextureRenamed, 1017, "texture-renamed")                                  \
    X(TextureCaseDiffers, 1018, "texture-case-differs")                         \
    X(UnitIgnored, 1019, "unit-ignored")                                        \
    X(TintIgnored, 1020, "tint-ignored")                                        \
    X(UnitMisfit, 1021, "unit-misfit")                                          \
    X(ConnectionEmpty, 1022, "connection-empty")                                \
    X(PlaneIgnored, 1023, "plane-ignored")                                      \
    X(NothingToBuild, 1024, "nothing-to-build")
// clang-format on

/// What happened, in a form that programs can rely on: neither the numbers nor the names
/// (diagnosticCodeName) change their meaning.
enum class DiagnosticCode : std::int32_t
{
#define VYR_MTLX_ENUMERATOR(constant, number, name) constant = number,
    VYR_MTLX_DIAGNOSTIC_CODES(VYR_MTLX_ENUMERATOR)
#undef VYR_MTLX_ENUMERATOR
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
/// Convert) or of buildOverlay, in the order in which they arose. Filled also when an exception left the call. The
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
