#include "converter/Driver.h"

#include <algorithm>
#include <filesystem>

#include "assets/Lyrex.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "graph/Nodes.h"
#include "materials/Translators.h"
#include "textures/Translation.h"

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

bool runTranslator(const Translation& translation)
{
    if (assets::findLyrexFamily(assets::Asset(translation.asset).schema()))
        return materials::translateLyrex(translation);
    constexpr std::int32_t legacyPath = 1;
    if (translation.options.translationPath == legacyPath)
        return materials::translateLegacy(translation);
    return materials::translateGeneric(translation);
}

} // namespace

bool translate(const assets::IAssetInstance& asset, const std::string& name,
               const mx::DocumentPtr& document, ConverterOptions& options, const Log& log)
{
    textures::MaterialFiles::keep(nullptr);
    if (options.outputDirectory.empty())
        options.outputDirectory = base::utf8FromPath(fs::temp_directory_path());
    if (!isUsable(name, document, options, log))
        return false;
    const assets::AssetHandle clone = assets::cloneOf(asset);
    if (!clone)
    {
        log.error(DiagnosticCode::CloneFailed, "", "the asset cannot be cloned");
        return false;
    }
    const BakeSettings bakes = bakeSettings();
    auto files = std::make_unique<textures::MaterialFiles>(options.outputDirectory.str(), name,
                                                           bakes.anew ? base::SameBytes::AreWritten
                                                                      : base::SameBytes::Stay);
    const Translation translation{*clone, name, document, options, bakes, log, *files};
    const std::size_t firstChild = document->getChildren().size();
    if (!runTranslator(translation))
        return false;
    // From here on the document names them, even if gathering fails.
    textures::MaterialFiles::keep(std::move(files));
    if (options.copyTextures)
        gatherTextures(translation, firstChild);
    return true;
}

std::string materialName(const assets::IAssetInstance& instance, bool useIdentifier)
{
    const assets::Asset asset(instance);
    std::string name = asset.displayName();
    std::erase_if(name, [](char c) { return !base::isAsciiAlphanumeric(c); });
    if (!useIdentifier && !name.empty())
        return base::isAsciiDigit(name.front()) ? "M" + name : name;

    std::string identifier = asset.identifier();
    std::erase_if(identifier, [](char c) { return c != '_' && !base::isAsciiAlphanumeric(c); });
    return "XID_" + name + "_" + identifier;
}

} // namespace vyr::MaterialTranslation::converter
