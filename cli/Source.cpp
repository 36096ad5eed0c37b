#include "Source.h"

#include <memory>
#include <utility>
#include <variant>

#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <kelvor/platform/assets/PropertyType.h>

#include "Console.h"

namespace vyr::cli
{
namespace
{

using namespace kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using Reference = std::unique_ptr<IAssetInstance, IAssetInstanceDeleter>;

/// Visits the assets depth first, each once. What waits is on a stack of its own: files may connect
/// thousands of assets in a chain.
class ReachWalk
{
  public:
    Reach from(const IAssetInstance& root)
    {
        visit(root);
        while (!_waiting.empty())
        {
            Step step = std::move(_waiting.back());
            _waiting.pop_back();
            if (step.property)
                visit(*step.property);
            else if (const IAssetInstance* asset = step.asset.get(); _visited.insert(asset).second)
            {
                // Kept, so that no other asset gets the address of one that was visited.
                _held.push_back(std::move(step.asset));
                visit(*asset);
            }
        }
        return std::move(_reach);
    }

  private:
    /// One of the two.
    struct Step
    {
        const IProperty* property = nullptr;
        Reference asset;
    };

    // What comes last is put on the stack first.

    void visit(const IAssetInstance& asset)
    {
        UTF8String id;
        asset.GetIdentifier(id);
        _reach.ids.insert(id.str());
        if (const IPropertyConstTable* generic = asset.GetGenericPropertyTable())
            addProperties(*generic);
        addProperties(asset);
    }

    void addProperties(const IPropertyConstTable& table)
    {
        for (std::size_t i = table.GetPropertyCount(); i-- > 0;)
            if (const IProperty* property = table.GetProperty(i))
                _waiting.push_back({property, nullptr});
    }

    void visit(const IProperty& property)
    {
        if (property.GetType() == ePropertyType_URI)
            if (const auto* uri = dynamic_cast<const IUriValue*>(property.GetValue()))
                addImage(*uri);
        for (std::size_t i = property.GetConnectionCount(); i-- > 0;)
            if (Reference connected(property.GetConnectedAsset(i)); connected)
                _waiting.push_back({nullptr, std::move(connected)});
    }

    void addImage(const IUriValue& uri)
    {
        UTF8String text;
        uri.GetUri(text, TextForm::Stored);
        if (!text.empty() && _seenImages.insert(text.str()).second)
            _reach.images.push_back(text.str());
    }

    Reach _reach;
    std::unordered_set<std::string> _seenImages;
    std::unordered_set<const IAssetInstance*> _visited;
    std::vector<Reference> _held;
    std::vector<Step> _waiting;
};

void addPath(std::vector<std::string>& paths,
             const std::optional<assetlib::OverlayTexture>& texture)
{
    if (texture && !texture->path.empty())
        paths.push_back(texture->path);
}

} // namespace

std::optional<Source> loadFiles(const std::vector<std::string>& files,
                                const std::vector<std::string>& texturePaths)
{
    assetlib::LoadResult result = assetlib::load(files, {texturePaths});
    for (const assetlib::LoadError& error : result.errors)
        complain(error.format());
    if (!result.library)
        return std::nullopt;
    return Source{std::move(*result.library), std::move(result.warnings)};
}

std::string subjectOf(const assetlib::Material& material)
{
    return "material \"" + material.id + "\" (" + material.schema + ")";
}

std::string subjectOf(const assetlib::Overlay& overlay)
{
    return "overlay \"" + overlay.name + "\" (" + typeName(overlay) + ")";
}

std::string typeName(const assetlib::Overlay& overlay)
{
    return std::holds_alternative<assetlib::Decal>(overlay.content) ? "decal" : "thread";
}

std::vector<std::string> imagesOf(const assetlib::Overlay& overlay)
{
    std::vector<std::string> paths;
    if (const auto* decal = std::get_if<assetlib::Decal>(&overlay.content))
        addPath(paths, decal->texture);
    if (const auto* thread = std::get_if<assetlib::Thread>(&overlay.content))
    {
        addPath(paths, thread->threadTexture);
        addPath(paths, thread->normalTexture);
    }
    return paths;
}

Reach reachOf(const IAssetInstance& asset)
{
    return ReachWalk().from(asset);
}

} // namespace vyr::cli
