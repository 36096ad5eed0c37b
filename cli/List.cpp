#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <MaterialTranslation/MaterialXConverter.h>

#include "CommandLine.h"
#include "Console.h"
#include "Json.h"
#include "base/Text.h"
#include "batch/Source.h"

namespace vyr::cli
{
namespace
{

/// A material or overlay of the files.
struct Entry
{
    /// Empty for an overlay.
    std::string id;
    std::string name;
    /// Schema or type.
    std::string kind;
    std::string file;
    std::vector<std::string> textures;
};

std::vector<Entry> materialsOf(const assetlib::Library& library)
{
    MaterialTranslation::ConverterOptions options;
    MaterialTranslation::MaterialXConverter converter(options);
    std::vector<Entry> entries;
    for (const assetlib::Material& material : library.materials())
        entries.push_back({material.id, converter.getMaterialName(*material.asset).str(),
                           material.schema, material.file, batch::imagesOf(*material.asset)});
    return entries;
}

std::vector<Entry> overlaysOf(const assetlib::Library& library)
{
    std::vector<Entry> entries;
    for (const assetlib::Overlay& overlay : library.overlays())
        entries.push_back(
            {{}, overlay.name, batch::typeName(overlay), overlay.file, batch::imagesOf(overlay)});
    return entries;
}

void addEntries(const JsonNode& list, const std::vector<Entry>& entries, const char* kind)
{
    for (const Entry& entry : entries)
    {
        const JsonNode object = list.addObject();
        if (!entry.id.empty())
            object.add("id", entry.id);
        object.add("name", entry.name);
        object.add(kind, entry.kind);
        object.add("file", entry.file);
        object.add("textures", entry.textures);
    }
}

std::string asJson(const std::vector<Entry>& materials, const std::vector<Entry>& overlays)
{
    const JsonDocument document;
    addEntries(document.root().addList("materials"), materials, "schema");
    addEntries(document.root().addList("overlays"), overlays, "type");
    return document.text();
}

using Row = std::array<std::string, 4>;

Row toRow(const Entry& entry)
{
    std::string textures;
    for (const std::string& texture : entry.textures)
        textures += (textures.empty() ? "" : ", ") + texture;
    Row row = {entry.id, entry.name, entry.kind, textures};
    if (entry.id.empty())
        row = {"-", entry.name, "(" + entry.kind + ")", textures};
    std::ranges::transform(row, row.begin(), base::printable);
    return row;
}

std::string asTable(const std::vector<Entry>& materials, const std::vector<Entry>& overlays)
{
    std::vector<Row> rows = {{"ID", "NAME", "SCHEMA", "TEXTURES"}};
    for (const std::vector<Entry>& entries : {materials, overlays})
        std::ranges::transform(entries, std::back_inserter(rows), toRow);

    std::array<std::size_t, std::tuple_size_v<Row>> widths{};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], base::characterCount(row[i]));

    std::string text;
    for (const Row& row : rows)
    {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::string(widths[i] - base::characterCount(row[i]) + 2, ' ');
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

} // namespace

ExitStatus run(const ListCommand& command)
{
    const batch::Source source = batch::loadFiles(command.files, {{}, 1, true});
    const std::vector<Entry> materials = materialsOf(source.library);
    const std::vector<Entry> overlays = overlaysOf(source.library);
    Results results;
    results.write(command.json ? asJson(materials, overlays) : asTable(materials, overlays));
    return results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

} // namespace vyr::cli
