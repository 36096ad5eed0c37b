#include <array>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <MaterialTranslation/ThreadInfo.h>
#include <kelvor/platform/core/string/IString.h>

#include "CommandLine.h"
#include "Console.h"
#include "Output.h"
#include "Source.h"

namespace vyr::cli
{
namespace
{

namespace mt = MaterialTranslation;

// The converter's records of what a file asked for.

mt::TextureInfo toInfo(const assetlib::OverlayTexture& texture)
{
    mt::TextureInfo info;
    info.path = texture.path;
    info.realWorldOffset = texture.realWorldOffset;
    info.realWorldScale = texture.realWorldScale;
    info.unit = texture.unit;
    info.uvOffset = texture.uvOffset;
    info.uvScale = texture.uvScale;
    info.rotation = texture.rotation;
    return info;
}

std::shared_ptr<mt::TextureInfo> toShared(const std::optional<assetlib::OverlayTexture>& texture)
{
    return texture ? std::make_shared<mt::TextureInfo>(toInfo(*texture)) : nullptr;
}

std::shared_ptr<std::array<float, 4>> toShared(const std::optional<std::array<float, 4>>& values)
{
    return values ? std::make_shared<std::array<float, 4>>(*values) : nullptr;
}

mt::DecalInfo toInfo(const assetlib::Decal& decal)
{
    mt::DecalInfo info;
    info.kind = decal.kind;
    info.texture = toInfo(decal.texture);
    info.value0 = decal.value0;
    info.value1 = decal.value1;
    info.value2 = decal.value2;
    return info;
}

mt::ThreadInfo toInfo(const assetlib::Thread& thread)
{
    mt::ThreadInfo info;
    info.threadTexture = toShared(thread.threadTexture);
    info.normalTexture = toShared(thread.normalTexture);
    info.flag = thread.flag;
    info.baseMaterialColor = toShared(thread.baseMaterialColor);
    info.startClippingPlane = toShared(thread.startClippingPlane);
    info.endClippingPlane = toShared(thread.endClippingPlane);
    return info;
}

class Text final : public kelvor::platform::core::string::IString
{
  public:
    void Assign(const kelvor::platform::core::string::UTF8String& text) override
    {
        _text = text.str();
    }
    const std::string& text() const { return _text; }

  private:
    std::string _text;
};

template <class Payload>
bool convert(mt::MaterialXConverter& converter, const std::string& name, mt::ConversionType type,
             Payload payload, Text& document)
{
    mt::MaterialInfo info;
    info.name = name;
    info.type = type;
    info.payload = &payload;
    return converter.Convert(info, document);
}

bool convert(mt::MaterialXConverter& converter, const assetlib::Overlay& overlay,
             const std::string& name, Text& document)
{
    if (const auto* decal = std::get_if<assetlib::Decal>(&overlay.content))
        return convert(converter, name, mt::ConversionType::Decal, toInfo(*decal), document);
    return convert(converter, name, mt::ConversionType::Thread,
                   toInfo(std::get<assetlib::Thread>(overlay.content)), document);
}

/// Why an overlay cannot have the document of that name; empty when it can.
std::string refusalOf(const assetlib::Overlay& overlay, const std::string& name,
                      DocumentNames& names)
{
    return name.empty() ? "the name has no ASCII letter or digit"
                        : names.claim(name, subjectOf(overlay) + " of " + overlay.file);
}

/// Adds what loading found about the overlay.
void addWarnings(const assetlib::Overlay& overlay, const Source& source, Outcome& outcome)
{
    for (const assetlib::LoadWarning& warning : source.warnings)
        if (warning.file == overlay.file && warning.pointer.starts_with(overlay.pointer + "/"))
            outcome.warnings.push_back({{}, warning.property, warning.message});
}

Outcome convert(mt::MaterialXConverter& converter, const assetlib::Overlay& overlay,
                const std::string& name, const OutputFolder& folder)
{
    Outcome outcome;
    Text document;
    std::string reason = "the library cannot build it";
    try
    {
        outcome.converted = convert(converter, overlay, name, document);
    }
    catch (const std::exception& error)
    {
        reason = error.what();
    }
    addDiagnostics(outcome, outcome.converted ? "" : reason);
    if (outcome.converted)
        writeDocument(folder.shown / documentFile(name), document.text(), outcome);
    return outcome;
}

} // namespace

ExitStatus run(const OverlayCommand& command)
{
    const std::optional<Source> source = loadFiles(command.files);
    if (!source)
        return ExitStatus::WrongUse;
    finishBeforeStopping();
    const std::optional<OutputFolder> folder = makeOutputFolder(command.output);
    if (!folder)
        return ExitStatus::WrongUse;

    mt::ConverterOptions options;
    mt::MaterialXConverter converter(options);
    DocumentNames names;
    Results results;
    bool allConverted = true;
    for (const assetlib::Overlay& overlay : source->library.overlays())
    {
        if (stopRequested())
            return ExitStatus::Interrupted;
        Outcome outcome;
        const std::string name = documentName(overlay.name);
        outcome.message = refusalOf(overlay, name, names);
        if (outcome.message.empty())
            outcome = convert(converter, overlay, name, *folder);
        addWarnings(overlay, *source, outcome);
        complainAsIs(messageLines(overlay.file, subjectOf(overlay), outcome));
        if (outcome.converted)
            results.write(outcome.document + '\n');
        allConverted = allConverted && outcome.converted;
    }
    return allConverted && results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

} // namespace vyr::cli
