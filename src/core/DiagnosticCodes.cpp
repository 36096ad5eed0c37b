#include <algorithm>
#include <iterator>

#include <MaterialTranslation/Diagnostics.h>

namespace vyr::MaterialTranslation
{

namespace
{

struct CodeRow
{
    DiagnosticCode code;
    const char* name;
};

// docs/diagnostics.md explains each row; a test keeps the two together.
constexpr CodeRow codeTable[] = {
    {DiagnosticCode::PropertyType, "property-type"},
    {DiagnosticCode::PropertyInvalid, "property-invalid"},
    {DiagnosticCode::ValueNotFinite, "value-not-finite"},
    {DiagnosticCode::NoGenericProperties, "no-generic-properties"},
    {DiagnosticCode::UnknownSchema, "unknown-schema"},
    {DiagnosticCode::UnhandledTextureSchema, "unhandled-texture-schema"},
    {DiagnosticCode::LegacyUnavailable, "legacy-unavailable"},
    {DiagnosticCode::NameInvalid, "name-invalid"},
    {DiagnosticCode::NameTaken, "name-taken"},
    {DiagnosticCode::NoDocument, "no-document"},
    {DiagnosticCode::OutputDirectory, "output-directory"},
    {DiagnosticCode::CloneFailed, "clone-failed"},
    {DiagnosticCode::NothingRegistered, "nothing-registered"},
    {DiagnosticCode::NameEmpty, "name-empty"},
    {DiagnosticCode::Exception, "exception"},
    {DiagnosticCode::NoConverter, "no-converter"},
    {DiagnosticCode::PropertyUnread, "property-unread"},
    {DiagnosticCode::NameDuplicate, "name-duplicate"},
    {DiagnosticCode::TextureNotTranslated, "texture-not-translated"},
    {DiagnosticCode::TexturePathEmpty, "texture-path-empty"},
    {DiagnosticCode::TextureFileMissing, "texture-file-missing"},
    {DiagnosticCode::TextureUnused, "texture-unused"},
    {DiagnosticCode::ConnectionsIgnored, "connections-ignored"},
    {DiagnosticCode::FadeIgnored, "fade-ignored"},
    {DiagnosticCode::CutoutIgnored, "cutout-ignored"},
    {DiagnosticCode::UnitUnknown, "unit-unknown"},
    {DiagnosticCode::ChoiceUnknown, "choice-unknown"},
    {DiagnosticCode::TextChanged, "text-changed"},
    {DiagnosticCode::ValueAdjusted, "value-adjusted"},
    {DiagnosticCode::BakeFailed, "bake-failed"},
    {DiagnosticCode::TextureNameRefused, "texture-name-refused"},
    {DiagnosticCode::TextureNotGathered, "texture-not-gathered"},
    {DiagnosticCode::TextureRenamed, "texture-renamed"},
    {DiagnosticCode::TextureCaseDiffers, "texture-case-differs"},
    {DiagnosticCode::UnitIgnored, "unit-ignored"},
    {DiagnosticCode::TintIgnored, "tint-ignored"},
    {DiagnosticCode::UnitMisfit, "unit-misfit"},
};

} // namespace

const char* diagnosticCodeName(DiagnosticCode code)
{
    const auto* row = std::find_if(std::begin(codeTable), std::end(codeTable),
                                   [code](const CodeRow& r) { return r.code == code; });
    return row == std::end(codeTable) ? "unknown" : row->name;
}

const char* libraryVersion()
{
    return VYR_MTLX_VERSION;
}

} // namespace vyr::MaterialTranslation
