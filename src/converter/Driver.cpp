#include "converter/Driver.h"

#include <filesystem>

#include "assets/Schemas.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "converter/TextureGathering.h"
#include "graph/Names.h"
#include "materials/GenericTranslator.h"
#include "materials/LyrexTranslator.h"

namespace vyr::MaterialTranslation::converter
{

namespace mx = MaterialX;
namespace fs = std::filesystem;

namespace
{

bool isDirectory(const std::string& text)
{
    const fs::path path = base::pathFromUtf8(text);
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::none)
        throw fs::filesystem_error("status", path, error);
    return fs::is_directory(status);
}

bool isUsable(const std::string& name, const mx::DocumentPtr& document,
              const ConverterOptions& options, const Log& log)
{
    if (!isDirectory(options.outputDirectory.str()))
        log.error(DiagnosticCode::OutputDirectory, "",
                  "not an existing folder: " + options.outputDirectory.str());
    else if (!graph::isIdentifier(name))
        log.error(DiagnosticCode::NameInvalid, "",
                  "\"" + base::xmlText(name) + "\" cannot name a material");
    else if (!document)
        log.error(DiagnosticCode::NoDocument, "", "no document was given");
    else
        return true;
    return false;
}

bool runTranslator(const materials::Translation& translation)
{
    if (assets::IsLyrex(translation.asset))
        return materials::translateLyrex(translation);
    constexpr std::int32_t legacyPath = 1;
    if (translation.options.translationPath == legacyPath)
    {
        translation.log.error(DiagnosticCode::LegacyUnavailable, "",
                              "this version has no translator of the legacy family");
        return false;
    }
    return materials::translateGeneric(translation);
}

} // namespace

bool translate(const assets::IAssetInstance& asset, const std::string& name,
               const mx::DocumentPtr& document, ConverterOptions& options, const Log& log)
{
    if (options.outputDirectory.empty())
        options.outputDirectory = base::utf8FromPath(fs::temp_directory_path());
    if (!isUsable(name, document, options, log))
        return false;
    const assets::AssetHandle clone(asset.Clone());
    if (!clone)
    {
        log.error(DiagnosticCode::CloneFailed, "", "the asset cannot be cloned");
        return false;
    }
    const std::size_t before = document->getChildren().size();
    std::vector<fs::path> baked;
    const bool translated = runTranslator({*clone, name, document, options, log, baked});
    if (options.copyTextures)
        gatherTextures({document, before, name, options.outputDirectory.str(), baked, log});
    return translated;
}

} // namespace vyr::MaterialTranslation::converter
