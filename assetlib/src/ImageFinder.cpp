#include "ImageFinder.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>
#include <system_error>

#include "CaseFold.h"
#include "Paths.h"
#include "Words.h"

namespace vyr::assetlib
{

namespace fs = std::filesystem;

namespace
{

bool existsAsFile(const fs::path& path)
{
    std::error_code error;
    return fs::is_regular_file(path, error);
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
    if (foldCase(reference.substr(0, scheme.size())) != scheme)
        return reference;
    std::string path = percentDecoded(std::string_view(reference).substr(scheme.size()));
    if (path.starts_with("//"))
    {
        const std::string host = foldCase(path.substr(2, local.size()));
        if (host == local)
            path.erase(0, 1 + local.size());
        else if (host.starts_with('/'))
            path.erase(0, 2);
    }
    const bool hasDrive = path.size() > 2 && path[0] == '/' && path[2] == ':';
    return hasDrive ? path.substr(1) : path;
}

/// The files that a path without root leads to below a folder, whatever the case of its parts.
void collectInAnyCase(FolderCache& cache, const fs::path& folder, fs::path::iterator part,
                      fs::path::iterator end, std::set<std::string>& found)
{
    if (part == end)
    {
        if (cache.isFile(folder))
            found.insert(textOf(tidyAbsolute(folder)));
        return;
    }
    const auto next = std::next(part);
    if (*part == "." || *part == ".." || part->empty())
        return collectInAnyCase(cache, folder / *part, next, end, found);
    const auto [first, last] = cache.listing(folder).equal_range(foldCase(textOf(*part)));
    for (auto name = first; name != last; ++name)
        collectInAnyCase(cache, folder / pathOf(name->second), next, end, found);
}

std::string differsInCase(const std::string& reference, const std::vector<std::string>& files)
{
    std::string message = "no file " + inQuotes(reference) + " with this upper and lower case; ";
    if (files.size() == 1)
        return message + "taken: " + inQuotes(files.front());
    return message + "not taken, since several fit: " + inQuotes(files[0]) + ", " +
           inQuotes(files[1]);
}

} // namespace

bool FolderCache::isFile(const fs::path& path)
{
    const auto [entry, isNew] = _files.try_emplace(path.native());
    if (isNew)
        entry->second = existsAsFile(path);
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
        const std::string name = textOf(at->path().filename());
        entry->second.emplace(foldCase(name), name);
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
    for (const fs::path& form : forms)
    {
        // An absolute path replaces the folder that it is appended to.
        for (const fs::path& folder : _folders)
        {
            if (const fs::path path = folder / form; _cache.isFile(path))
                return {textOf(tidyAbsolute(path)), {}};
        }
    }
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
        collectInAnyCase(_cache, start, parts.begin(), parts.end(), found);
    }
    return {found.begin(), found.end()};
}

std::vector<fs::path> spellings(const std::string& reference)
{
    const std::string written = withoutFileScheme(reference);
    if (written.empty() || written.find('\0') != written.npos)
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
    std::ranges::transform(forms, std::back_inserter(paths), pathOf);
    return paths;
}

std::optional<std::string> findFile(const std::vector<fs::path>& folders,
                                    const std::string& reference)
{
    for (const fs::path& form : spellings(reference))
    {
        if (form.is_absolute() && existsAsFile(form))
            return textOf(tidyAbsolute(form));
        for (const fs::path& folder : folders)
        {
            if (const fs::path path = folder / form; existsAsFile(path))
                return textOf(tidyAbsolute(path));
        }
    }
    return std::nullopt;
}

} // namespace vyr::assetlib
