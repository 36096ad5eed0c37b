#include "Report.h"

#include <filesystem>
#include <fstream>
#include <utility>
#include <variant>

#include <MaterialTranslation/Diagnostics.h>

#include "CommandLine.h"
#include "Console.h"
#include "base/Paths.h"
#include "base/WriteFile.h"

namespace vyr::cli
{
namespace
{

void addItem(const JsonNode& entry, const assetlib::Material& material, const std::string& name)
{
    entry.add("id", material.id);
    entry.add("name", name);
    entry.add("schema", material.schema);
}

void addItem(const JsonNode& entry, const assetlib::Overlay& overlay, const std::string& name)
{
    entry.add("overlay", overlay.name);
    entry.add("name", name);
    entry.add("type", batch::typeName(overlay));
}

void addHead(const JsonNode& root)
{
    root.add("converter", MaterialTranslation::libraryVersion());
}

bool writeText(const std::string& file, const std::string& text)
{
    // Its time tells when the run was.
    const auto error =
        base::writeFile(base::pathFromUtf8(file), text, base::SameBytes::AreWritten).error;
    if (error)
        complain("vyr-mtlx: " + batch::writeFailure(file, error.message()));
    return !error;
}

} // namespace

Report::Report(std::string file, const char* things) : _file(std::move(file))
{
    addHead(_document.root());
    _entries = _document.root().addList(things);
}

JsonNode Report::addEntry(const batch::Task& task, const char* status)
{
    const JsonNode entry = _entries.addObject();
    std::visit([&](const auto* item) { addItem(entry, *item, task.name); }, task.item);
    entry.add("file", batch::fileOf(task.item));
    entry.add("status", status);
    return entry;
}

void Report::add(const batch::Task& task, const batch::Outcome& outcome)
{
    if (!isWanted())
        return;
    const JsonNode entry = addEntry(task, outcome.converted ? "converted" : "failed");
    entry.addOrNull("document", outcome.document);
    entry.addFlag("unchanged", outcome.unchanged);
    entry.add("textures", outcome.textures);
    const JsonNode bakes = entry.addObject("bakes");
    bakes.addCount("made", outcome.baked);
    bakes.addCount("kept", outcome.kept);
    entry.addOrNull("message", outcome.message);
    const JsonNode warnings = entry.addList("warnings");
    for (const batch::Remark& warning : outcome.warnings)
    {
        const JsonNode object = warnings.addObject();
        object.add("code", warning.code);
        object.add("property", warning.property);
        object.add("text", warning.text);
    }
}

void Report::addUntried(const batch::Task& task)
{
    if (isWanted())
        addEntry(task, "not-tried");
}

bool Report::write(const char* end, const std::vector<std::string>& removed, Results& results)
{
    if (!isWanted())
        return true;
    _document.root().add("removed", removed);
    _document.root().add("run", end);
    if (_file != standardStream)
        return writeText(_file, _document.text());
    results.write(_document.text());
    return results.delivered();
}

void retireReport(const std::string& file)
{
    std::error_code error;
    const std::filesystem::path path = base::pathFromUtf8(file);
    if (file == standardStream ||
        !std::filesystem::is_regular_file(std::filesystem::symlink_status(path, error)))
        return;
    const std::string start = "{\n  \"converter\": \"";
    std::string found(start.size(), '\0');
    std::ifstream(path, std::ios::binary)
        .read(found.data(), static_cast<std::streamsize>(found.size()));
    if (found != start)
        return;
    const JsonDocument report;
    addHead(report.root());
    report.root().add("run", "refused");
    writeText(file, report.text());
}

} // namespace vyr::cli
