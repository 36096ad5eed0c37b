#include "batch/Output.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <system_error>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/DocumentIO.h>

#include "base/Hash.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "batch/Refusal.h"

namespace vyr::batch
{
namespace
{

namespace fs = std::filesystem;

/// The way from a folder to a file below it; nothing for a file elsewhere. Both absolute.
std::optional<fs::path> wayBelow(const fs::path& folder, const fs::path& file)
{
    const fs::path way = file.lexically_relative(folder);
    if (way.empty() || way == "." || *way.begin() == "..")
        return std::nullopt;
    return way;
}

std::optional<fs::path> relativePath(const fs::path& file, const OutputFolder& folder)
{
    if (!file.is_absolute())
        return std::nullopt;
    // ".." after a symbolic link leads elsewhere than its text says.
    const bool literal = std::ranges::find(file, fs::path("..")) == file.end();
    if (const auto way =
            literal ? wayBelow(folder.absolute, file.lexically_normal()) : std::nullopt)
        return way;
    return wayBelow(folder.canonical, placeOf(file));
}

/// "text: property"; the text alone without a property.
std::string withProperty(const std::string& text, const std::string& property)
{
    return property.empty() ? text : text + ": " + property;
}

} // namespace

OutputFolder makeOutputFolder(const std::string& path)
{
    OutputFolder folder;
    folder.shown = base::pathFromUtf8(path);
    std::error_code error;
    fs::create_directories(folder.shown, error);
    if (fs::is_directory(folder.shown))
        error.clear();
    else if (!error)
        error = std::make_error_code(std::errc::not_a_directory);
    if (!error)
        folder.absolute = fs::absolute(folder.shown, error).lexically_normal();
    if (!error)
        folder.canonical = fs::canonical(folder.shown, error);
    if (error)
        throw Refusal(path + ": " + error.message());
    return folder;
}

fs::path placeOf(const fs::path& file)
{
    std::error_code error;
    const fs::path absolute = fs::absolute(file, error);
    const fs::path folder = fs::weakly_canonical(absolute.parent_path(), error);
    return error ? absolute.lexically_normal() : folder / absolute.filename();
}

void makeImagePathsRelative(const MaterialX::DocumentPtr& document, const OutputFolder& folder)
{
    for (const MaterialX::InputPtr& input : MaterialTranslation::fileInputs(document))
        if (const auto way = relativePath(base::pathFromUtf8(input->getValueString()), folder))
            input->setValueString(base::genericUtf8FromPath(*way));
}

fs::path documentFile(const std::string& name)
{
    return base::pathFromUtf8(name + ".mtlx");
}

void addDiagnostics(Outcome& outcome, const std::string& reason)
{
    namespace mt = MaterialTranslation;
    for (const mt::Diagnostic& diagnostic : mt::lastDiagnostics())
    {
        const bool isError = diagnostic.severity == mt::Severity::Error;
        if (isError)
            outcome.message += (outcome.message.empty() ? "" : "; ") +
                               withProperty(diagnostic.text, diagnostic.property);
        (isError ? outcome.errors : outcome.warnings)
            .push_back(
                {mt::diagnosticCodeName(diagnostic.code), diagnostic.property, diagnostic.text});
    }
    if (outcome.message.empty())
        outcome.message = reason;
}

std::string writeFailure(const std::string& file, const std::string& reason)
{
    return "cannot write " + file + ": " + reason;
}

WrittenImage WrittenImage::at(const fs::path& file, bool isCopy)
{
    WrittenImage image;
    image.file = base::utf8FromPath(file.filename());
    std::error_code error;
    if (isCopy)
    {
        image.size = static_cast<std::int64_t>(fs::file_size(file, error));
        image.time = fs::last_write_time(file, error).time_since_epoch().count();
    }
    else
        image.hash = base::hashOfFile(file).value_or(std::string());
    return image;
}

bool WrittenImage::isAt(const fs::path& path) const
{
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(path, error)))
        return false;
    const WrittenImage found = at(path, hash.empty());
    return found.hash == hash && found.size == size && found.time == time;
}

void writeDocument(const fs::path& file, std::string_view text, base::SameBytes same,
                   Outcome& outcome)
{
    const std::string shown = base::utf8FromPath(file);
    const auto [error, stayed] = base::writeFile(file, text, same);
    outcome.converted = !error;
    outcome.unchanged = stayed;
    outcome.written.hash = base::hashOf(text);
    (error ? outcome.message : outcome.document) =
        error ? writeFailure(shown, error.message()) : shown;
}

std::string withPath(const MaterialTranslation::ValidationMessage& message)
{
    return message.path.empty() ? message.text : message.path + ": " + message.text;
}

std::string messageLines(const std::string& file, const std::string& subject,
                         const Outcome& outcome)
{
    std::string lines;
    const auto addLine = [&](const std::string& kind, const std::string& text)
    { lines += base::printable(file + ": " + kind + subject + ": " + text) + '\n'; };
    for (const Remark& warning : outcome.warnings)
        addLine("warning: ", withProperty(warning.text, warning.property));
    if (!outcome.converted)
        addLine("", outcome.message);
    return lines;
}

} // namespace vyr::batch
