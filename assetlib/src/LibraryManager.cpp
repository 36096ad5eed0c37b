#include "LibraryManager.h"

#include <algorithm>
#include <iterator>
#include <system_error>

#include "ImageFinder.h"
#include "Paths.h"

namespace vyr::assetlib
{

LibraryManager& LibraryManager::instance()
{
    // Never destroyed: converters may still ask while the program ends.
    static LibraryManager& manager = *new LibraryManager;
    return manager;
}

void LibraryManager::setFolders(const std::vector<std::string>& folders)
{
    auto absolute = std::make_shared<Folders>();
    std::ranges::transform(folders, std::back_inserter(*absolute),
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
    try
    {
        UTF8String found;
        if (!Resolve(UTF8String(narrowOf(uri.str())), found))
            return false;
        path = WideString(wideOf(found.str()));
        return true;
    }
    catch (const std::system_error&)
    {
        return false; // half a surrogate pair and the like name no file
    }
}

} // namespace vyr::assetlib
