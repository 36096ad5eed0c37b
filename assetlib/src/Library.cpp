#include <vyr/assetlib/Library.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>
#include <mutex>
#include <system_error>
#include <unordered_map>

#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "Loading.h"
#include "base/Paths.h"

namespace vyr::assetlib
{

class Library::Content
{
  public:
    Content() = default;
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;
    ~Content() { store.release(); }

    Store& store = *new Store;
    std::vector<Material> materials;
    std::vector<Overlay> overlays;
    /// By the ids of the materials.
    std::unordered_map<std::string_view, std::size_t> materialIndex;
};

namespace
{

/// The asset library of this process as converters see it.
class LibraryManager final : public platform::IAssetLibraryManager, private platform::IPathResolver
{
  public:
    static LibraryManager& instance()
    {
        // Never destroyed: converters may still ask while the program ends.
        static LibraryManager& manager = *new LibraryManager;
        return manager;
    }

    const platform::IPathResolver* GetPathResolver() const override { return this; }
    void setFolders(const std::vector<std::string>& folders);

  private:
    using Folders = std::vector<std::filesystem::path>;

    LibraryManager() = default;

    bool Resolve(const UTF8String& uri, UTF8String& path) const override;
    bool Resolve(const WideString& uri, WideString& path) const override;

    std::shared_ptr<const Folders> folders() const
    {
        const std::lock_guard lock(_mutex);
        return _folders;
    }

    mutable std::mutex _mutex;
    std::shared_ptr<const Folders> _folders = std::make_shared<Folders>();
};

void LibraryManager::setFolders(const std::vector<std::string>& folders)
{
    auto absolute = std::make_shared<Folders>();
    for (const std::string& folder : folders)
        absolute->push_back(base::tidyAbsolute(base::pathFromUtf8(folder)));
    const std::lock_guard lock(_mutex);
    _folders = std::move(absolute);
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
        if (!Resolve(UTF8String(base::utf8FromWide(uri.str())), found))
            return false;
        path = WideString(base::wideFromUtf8(found.str()));
        return true;
    }
    catch (const std::system_error&)
    {
        return false; // half a surrogate pair and the like name no file
    }
}

} // namespace

Library::Library(std::unique_ptr<const Content> content) : _content(std::move(content)) {}
Library::Library(Library&& other) noexcept = default;
Library& Library::operator=(Library&& other) noexcept = default;
Library::~Library() = default;

const std::vector<Material>& Library::materials() const
{
    return _content->materials;
}

const Material* Library::findMaterial(const std::string& id) const
{
    const auto found = _content->materialIndex.find(id);
    return found != _content->materialIndex.end() ? &_content->materials[found->second] : nullptr;
}

const std::vector<Overlay>& Library::overlays() const
{
    return _content->overlays;
}

std::size_t Library::referenceCount() const
{
    return _content->store.referenceCount();
}

LoadResult load(const std::vector<std::string>& files, const LoadOptions& options)
{
    auto content = std::make_unique<Library::Content>();
    Loading loading{content->store.addShelf()};
    std::vector<Report> reports(files.begin(), files.end());
    bool allKnown = true;
    for (std::size_t i = 0; i < files.size(); ++i)
    {
        FileContent file = readAssetFile(content->store, loading, i, reports[i], options);
        allKnown = allKnown && file.isKnown;
        moveBehind(content->materials, std::move(file.materials));
        moveBehind(content->overlays, std::move(file.overlays));
    }
    connect(loading, reports, allKnown);

    LoadResult result;
    for (Report& report : reports)
        report.addTo(result);
    if (!result.errors.empty())
        return result;
    content->materialIndex.reserve(content->materials.size());
    for (std::size_t i = 0; i < content->materials.size(); ++i)
        content->materialIndex.emplace(content->materials[i].id, i);
    result.library = Library(std::move(content));
    return result;
}

void setResolverFolders(std::vector<std::string> folders)
{
    LibraryManager::instance().setFolders(folders);
}

} // namespace vyr::assetlib

namespace kelvor::platform::assets
{

// In the file of load(): a linker takes from a static library only the objects that it needs, and whoever
// loads files needs this one.
IAssetLibraryManager* GetIAssetLibraryManager()
{
    return &vyr::assetlib::LibraryManager::instance();
}

} // namespace kelvor::platform::assets
