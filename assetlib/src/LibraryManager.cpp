#include "LibraryManager.h"

#include <algorithm>
#include <iterator>

#include "ImageFinder.h"
#include "Paths.h"

namespace vyr::assetlib
{

namespace
{

/// Nothing for a text that cannot be put into UTF-8, such as half a surrogate pair.
std::optional<std::string> narrow(const std::wstring& text)
{
    try
    {
        return textOf(std::filesystem::path(text));
    }
    catch (const std::exception&)
    {
        return std::nullopt;
    }
}

} // namespace

LibraryManager& LibraryManager::instance()
{
    // Never destroyed: converters may still ask while the program ends.
    static LibraryManager& manager = *new LibraryManager;
    return manager;
}

void LibraryManager::setFolders(const std::vector<std::string>& folders)
{
    auto absolute = std::make_shared<Folders>();
    std::transform(folders.begin(), folders.end(), std::back_inserter(*absolute),
                   [](const std::string& folder) { return tidyAbsolute(pathOf(folder)); });
    const std::lock_guard lock(_mutex);
    _folders = std::move(absolute);
}

std::shared_ptr<const LibraryManager::Folders> LibraryManager::folders() const
{
    const std::lock_guard lock(_mutex);
    return _folders;
}

bool LibraryManager::Resolve(const UTF8String& uri, UTF8String& path) const
{
    const auto found = findFile(*folders(), uri.str());
    if (found)
        path = *found;
    return found.has_value();
}

bool LibraryManager::Resolve(const WideString& uri, WideString& path) const
{
    const auto text = narrow(uri.str());
    UTF8String found;
    if (!text || !Resolve(UTF8String(*text), found))
        return false;
    path = WideString(pathOf(found.str()).wstring());
    return true;
}

} // namespace vyr::assetlib
