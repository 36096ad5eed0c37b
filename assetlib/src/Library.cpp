#include <vyr/assetlib/Library.h>

#include <iterator>
#include <unordered_map>

#include "FileReader.h"
#include "LibraryManager.h"

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
    std::unordered_map<std::string, std::size_t> materialIndex;
};

namespace
{

template <class T>
void append(std::vector<T>& all, const std::vector<T>& some)
{
    all.insert(all.end(), some.begin(), some.end());
}

template <class T>
void append(std::vector<T>& all, std::vector<T>&& some)
{
    all.insert(all.end(), std::make_move_iterator(some.begin()),
               std::make_move_iterator(some.end()));
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
    Loading loading{content->store};
    std::vector<Report> reports(files.begin(), files.end());
    bool allKnown = true;
    for (std::size_t i = 0; i < files.size(); ++i)
    {
        FileContent file = readAssetFile(loading, i, reports[i], options.texturePaths);
        allKnown = allKnown && file.isKnown;
        append(content->materials, std::move(file.materials));
        append(content->overlays, std::move(file.overlays));
    }
    connect(loading, reports, allKnown);

    LoadResult result;
    for (const Report& report : reports)
    {
        append(result.errors, report.errors());
        append(result.warnings, report.warnings());
    }
    if (!result.errors.empty())
        return result;
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

// Here, and not with the manager: a linker takes from a static library only the objects that it needs,
// and whoever loads files needs this one.
IAssetLibraryManager* GetIAssetLibraryManager()
{
    return &vyr::assetlib::LibraryManager::instance();
}

} // namespace kelvor::platform::assets
