#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <MaterialTranslation/DocumentIO.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <kelvor/platform/core/string/IString.h>

#include "Commands.h"
#include "Console.h"
#include "DocumentNames.h"
#include "Interruption.h"
#include "Outcome.h"
#include "Overlays.h"
#include "Paths.h"
#include "Source.h"

namespace vyr::cli
{
namespace
{

namespace mt = MaterialTranslation;

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

std::string subjectOf(const assetlib::Overlay& overlay)
{
    return "overlay \"" + overlay.name + "\" (" + typeName(overlay) + ")";
}

template <typename Payload>
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

std::vector<Warning> warningsOf(const assetlib::Overlay& overlay, const Source& source)
{
    std::vector<Warning> warnings;
    for (const assetlib::LoadWarning& warning : source.warnings)
    {
        if (warning.file == overlay.file && warning.pointer.starts_with(overlay.pointer + "/"))
            warnings.push_back({{}, warning.property, warning.message});
    }
    return warnings;
}

void write(const std::string& document, const std::filesystem::path& file, Outcome& outcome)
{
    outcome.document = utf8FromPath(file);
    try
    {
        mt::writeFileAtomically(file, document);
    }
    catch (const std::exception& error)
    {
        outcome.converted = false;
        outcome.message = writeFailure(outcome.document, error);
    }
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
    addDiagnostics(outcome);
    if (outcome.converted)
        write(document.text(), folder.shown / documentFile(name), outcome);
    else if (outcome.message.empty())
        outcome.message = reason;
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
        for (Warning& warning : warningsOf(overlay, *source))
            outcome.warnings.push_back(std::move(warning));
        complainAsIs(messageLines(overlay.file, subjectOf(overlay), outcome));
        if (outcome.converted)
            results.write(outcome.document + '\n');
        allConverted = allConverted && outcome.converted;
    }
    return allConverted && results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

} // namespace vyr::cli
