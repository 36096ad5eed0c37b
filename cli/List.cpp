#include <algorithm>
#include <array>
#include <string>
#include <variant>
#include <vector>

#include <MaterialTranslation/MaterialXConverter.h>

#include "Commands.h"
#include "Console.h"
#include "Overlays.h"
#include "Report.h"
#include "Source.h"

namespace vyr::cli
{
namespace
{

using Json = nlohmann::ordered_json;

Json materialList(const assetlib::Library& library)
{
    MaterialTranslation::ConverterOptions options;
    MaterialTranslation::MaterialXConverter converter(options);
    Json list = Json::array();
    for (const assetlib::Material& material : library.materials())
        list.push_back({{"id", material.id},
                        {"name", converter.getMaterialName(*material.asset).str()},
                        {"schema", material.schema},
                        {"file", material.file},
                        {"textures", reachOf(*material.asset).images}});
    return list;
}

Json overlayList(const assetlib::Library& library)
{
    Json list = Json::array();
    for (const assetlib::Overlay& overlay : library.overlays())
        list.push_back({{"name", overlay.name},
                        {"type", typeName(overlay)},
                        {"file", overlay.file},
                        {"textures", texturePathsOf(overlay)}});
    return list;
}

using Row = std::array<std::string, 4>;

std::string joined(const Json& texts)
{
    std::string all;
    for (const Json& text : texts)
        all += (all.empty() ? "" : ", ") + text.get_ref<const std::string&>();
    return all;
}

/// Number of characters, not bytes.
std::size_t lengthOf(const std::string& text)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string table(const std::vector<Row>& rows)
{
    std::array<std::size_t, 4> widths{};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], lengthOf(row[i]));

    std::string text;
    for (const Row& row : rows)
    {
        std::string line;
        for (std::size_t i = 0; i + 1 < row.size(); ++i)
            line += row[i] + std::string(widths[i] - lengthOf(row[i]) + 2, ' ');
        line += row.back();
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

std::string asTable(const Json& content)
{
    std::vector<Row> rows = {{"ID", "NAME", "SCHEMA", "TEXTURES"}};
    for (const Json& material : content["materials"])
        rows.push_back({oneLine(material["id"].get<std::string>()),
                        material["name"].get<std::string>(),
                        oneLine(material["schema"].get<std::string>()),
                        oneLine(joined(material["textures"]))});
    for (const Json& overlay : content["overlays"])
        rows.push_back({"-", oneLine(overlay["name"].get<std::string>()),
                        "(" + overlay["type"].get<std::string>() + ")",
                        oneLine(joined(overlay["textures"]))});
    return table(rows);
}

} // namespace

ExitStatus run(const ListCommand& command)
{
    const std::optional<Source> source = loadFiles(command.files);
    if (!source)
        return ExitStatus::WrongUse;
    const Json content = {{"materials", materialList(source->library)},
                          {"overlays", overlayList(source->library)}};
    Results results;
    results.write(command.json ? jsonText(content) : asTable(content));
    return results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

} // namespace vyr::cli
