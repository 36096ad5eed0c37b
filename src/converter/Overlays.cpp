#include <MaterialTranslation/Overlays.h>

#include <filesystem>
#include <stdexcept>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/DocumentIO.h>

#include "base/Paths.h"
#include "base/Text.h"
#include "converter/Driver.h"
#include "converter/Overlays.h"
#include "converter/Reporting.h"
#include "graph/Nodes.h"
#include "overlays/Overlay.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation
{

namespace mx = MaterialX;

namespace
{

void checkPayload(const MaterialInfo& info)
{
    if (info.payload)
        return;
    if (info.type == ConversionType::Decal)
        throw std::invalid_argument("invalid decal info");
    if (info.type == ConversionType::Thread)
        throw std::invalid_argument("invalid thread info");
}

/// The base of the element names.
std::string elementName(const std::string& given, const Log& log)
{
    if (graph::isIdentifier(given))
        return given;
    std::string name = base::plainName(given);
    if (name.empty())
        throw std::invalid_argument("invalid material name");
    log.warning(DiagnosticCode::TextChanged, "",
                "the material is called \"" + name +
                    "\", for its name cannot be that of an element");
    return name;
}

mx::DocumentPtr build(const MaterialInfo& info, const overlays::OverlayRequest& request)
{
    switch (info.type)
    {
    case ConversionType::Decal:
        return overlays::buildDecal(*static_cast<const DecalInfo*>(info.payload), request);
    case ConversionType::Thread:
        return overlays::buildThread(*static_cast<const ThreadInfo*>(info.payload), request);
    default:
        request.log.warning(DiagnosticCode::NothingToBuild, "",
                            "the request is neither for a decal nor for a thread");
        return nullptr;
    }
}

/// Gathers the images of a document.
/// @return false when there is no folder to gather them in.
bool gather(const mx::DocumentPtr& document, const std::string& name,
            const std::string& outputDirectory, const Log& log)
{
    std::error_code error;
    if (!std::filesystem::is_directory(base::pathFromUtf8(outputDirectory), error))
    {
        log.error(DiagnosticCode::OutputDirectory, "",
                  "not an existing folder: " + outputDirectory);
        return false;
    }
    const auto same = bakeSettings().anew ? base::SameBytes::AreWritten : base::SameBytes::Stay;
    auto files = std::make_unique<textures::MaterialFiles>(outputDirectory, name, same);
    converter::gatherTextures(*document, 0, *files, log);
    textures::MaterialFiles::keep(std::move(files));
    return true;
}

/// @return null when there is nothing to build, and after an error.
mx::DocumentPtr makeDocument(const MaterialInfo& info, const ConverterOptions& options)
{
    checkPayload(info);
    const Log log = LogSession::log();
    const std::string name = elementName(info.name.str(), log);
    mx::DocumentPtr document = build(info, {name, options.addLook, log});
    if (document && options.copyTextures &&
        !gather(document, name, options.outputDirectory.str(), log))
        return nullptr;
    return document;
}

} // namespace

namespace converter
{

bool convertOverlay(const MaterialInfo& info, kelvor::platform::core::string::IString& result)
{
    const mx::DocumentPtr document = makeDocument(info, ConverterOptions());
    result.Assign(kelvor::platform::core::string::UTF8String(
        documentToXml(document ? document : mx::createDocument())));
    return true;
}

} // namespace converter

mx::DocumentPtr buildOverlay(const MaterialInfo& info, const ConverterOptions& options)
{
    const LogSession session;
    textures::MaterialFiles::keep(nullptr);
    return converter::reporting([&] { return makeDocument(info, options); });
}

} // namespace vyr::MaterialTranslation
