#include "ImageFinder.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>
#include <system_error>

#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::assetlib
{

namespace fs = std::filesystem;

namespace
{

/// Bytes; no system has longer paths.
constexpr std::size_t longestReference = 32767;

std::string absoluteText(const fs::path& path)
{
    return base::genericUtf8FromPath(base::tidyAbsolute(path));
}

/// Replaces "%20" and the like; what is no such sequence stays.
std::string percentDecoded(std::string_view text)
{
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        unsigned byte = 0;
        const char* digits = text.data() + i + 1;
        if (text[i] == '%' && i + 2 < text.size() &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2)
        {
            decoded += static_cast<char>(byte);
            i += 2;
        }
        else
            decoded += text[i];
    }
    return decoded;
}

/// The path in a "file:" reference (RFC 8089, with the usual relative form), or the text itself.
std::string withoutFileScheme(const std::string& reference)
{
    constexpr std::string_view scheme = "file:";
    constexpr std::string_view local = "localhost/";
    if (!base::equalsIgnoringCase(reference.substr(0, scheme.size()), scheme))
        return reference;
    std::string path = percentDecoded(std::string_view(reference).substr(scheme.size()));
    if (path.starts_with("//"))
    {
        if (base::equalsIgnoringCase(path.substr(2, local.size()), local))
            path.erase(0, 1 + local.size());
        else if (path.starts_with("///"))
            path.erase(0, 2);
    }
    const bool hasDrive = path.size() > 2 && path[0] == '/' && path[2] == ':';
    return hasDrive ? path.substr(1) : path;
}

/// Adds the files that a path without root leads to below a folder, whatever the case of its parts.
void collectInAnyCase(FolderCache& cache, const fs::path& folder, const fs::path& parts,
                      std::set<std::string>& found)
{
    std::vector<fs::path> reached = {folder};
    for (const fs::path& part : parts)
    {
        if (part == "." || part == ".." || part.empty())
        {
            for (fs::path& path : reached)
                path /= part;
            continue;
        }
        const std::string wanted = base::foldCase(base::utf8FromPath(part));
        std::vector<fs::path> next;
        for (const fs::path& path : reached)
        {
            const auto [first, last] = cache.listing(path).equal_range(wanted);
            for (auto name = first; name != last; ++name)
                next.push_back(path / base::pathFromUtf8(name->second));
        }
        reached = std::move(next);
    }
    for (const fs::path& path : reached)
    {
        if (cache.isFile(path))
            found.insert(absoluteText(path));
    }
}

std::string differsInCase(const std::string& reference, const std::vector<std::string>& files)
{
    std::string message =
        "no file " + base::inQuotes(reference) + " with this upper and lower case; ";
    if (files.size() == 1)
        return message + "taken: " + base::inQuotes(files.front());
    return message + "not taken, since several fit: " + base::inQuotes(files[0]) + ", " +
           base::inQuotes(files[1]);
}

/// The forms under which a reference is looked up, the most literal first: a "file:" reference
/// decoded, then as it stands, with forward slashes for backward ones, and without a dot at the end.
/// Empty for a text that names no file.
std::vector<fs::path> spellings(const std::string& reference)
{
    const std::string written = withoutFileScheme(reference);
    if (written.empty() || written.size() > longestReference || written.find('\0') != written.npos)
        return {};
    std::vector<std::string> forms = {written};
    const auto add = [&](std::string form)
    {
        if (!form.empty() && std::ranges::find(forms, form) == forms.end())
            forms.push_back(std::move(form));
    };
    std::string forward = written;
    std::ranges::replace(forward, '\\', '/');
    add(forward);
    for (const std::string& form : {written, forward})
    {
        if (form.ends_with('.'))
            add(form.substr(0, form.size() - 1));
    }
    std::vector<fs::path> paths;
    std::ranges::transform(forms, std::back_inserter(paths), base::pathFromUtf8);
    return paths;
}

/// The absolute path of the first file that one of the forms names.
template <class IsFile>
std::optional<std::string> firstFile(const std::vector<fs::path>& forms,
                                     const std::vector<fs::path>& folders, IsFile isFile)
{
    for (const fs::path& form : forms)
    {
        if (form.is_absolute() && isFile(form))
            return absoluteText(form);
        for (const fs::path& folder : folders)
        {
            if (const fs::path path = folder / form; isFile(path))
                return absoluteText(path);
        }
    }
    return std::nullopt;
}

} // namespace

bool FolderCache::isFile(const fs::path& path)
{
    const auto [entry, isNew] = _files.try_emplace(path.native());
    if (isNew)
        entry->second = base::isFile(path);
    return entry->second;
}

const FolderCache::Listing& FolderCache::listing(const fs::path& folder)
{
    const auto [entry, isNew] = _listings.try_emplace(folder.native());
    if (!isNew)
        return entry->second;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
    {
        const std::string name = base::utf8FromPath(at->path().filename());
        entry->second.emplace(base::foldCase(name), name);
    }
    return entry->second;
}

const ImageFinder::Image& ImageFinder::find(const std::string& reference)
{
    const auto found = _found.find(reference);
    return found != _found.end() ? found->second
                                 : _found.emplace(reference, lookUp(reference)).first->second;
}

ImageFinder::Image ImageFinder::lookUp(const std::string& reference)
{
    const std::vector<fs::path> forms = spellings(reference);
    const auto isFile = [this](const fs::path& path) { return _cache.isFile(path); };
    if (auto file = firstFile(forms, _folders, isFile))
        return {std::move(*file), {}};
    for (const fs::path& form : forms)
    {
        const std::vector<std::string> files = findInAnyCase(form);
        if (!files.empty())
            return {files.size() == 1 ? files.front() : reference, differsInCase(reference, files)};
    }
    return {reference, {}};
}

std::vector<std::string> ImageFinder::findInAnyCase(const fs::path& path)
{
    std::set<std::string> found;
    const fs::path parts = path.relative_path();
    for (const fs::path& folder : _folders)
    {
        const fs::path start = path.is_absolute() ? path.root_path() : folder;
        collectInAnyCase(_cache, start, parts, found);
    }
    return {found.begin(), found.end()};
}

std::optional<std::string> findFile(const std::vector<fs::path>& folders,
                                    const std::string& reference)
{
    return firstFile(spellings(reference), folders, base::isFile);
}

} // namespace vyr::assetlib
