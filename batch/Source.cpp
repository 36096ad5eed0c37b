#include "batch/Source.h"

#include <memory>
#include <utility>
#include <variant>

#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <kelvor/platform/assets/PropertyType.h>

#include "batch/Refusal.h"

namespace vyr::batch
{
namespace
{

using namespace kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using Reference = std::unique_ptr<IAssetInstance, IAssetInstanceDeleter>;

/// Visits an asset and all that are connected to it, depth first, each once. What waits is on a stack of its
/// own: files may connect thousands of assets in a chain.
/// @tparam Visitor is called with each asset, and with each property that is a URI.
template <class Visitor> class ReachWalk
{
  public:
    explicit ReachWalk(Visitor visitor) : _visitor(std::move(visitor)) {}

    void from(const IAssetInstance& root)
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
        _visitor(asset);
        if (const IPropertyConstTable* generic = asset.GetGenericPropertyTable())
            addProperties(*generic);
        addProperties(asset);
    }

    void addProperties(const IPropertyConstTable& table)
    {
        for (std::size_t i = table.GetPropertyCount(); i-- > 0;)
            if (const IProperty* property = table.GetProperty(i);
                property &&
                (property->GetType() == ePropertyType_URI || property->HasConnections()))
                _waiting.push_back({property, nullptr});
    }

    void visit(const IProperty& property)
    {
        if (property.GetType() == ePropertyType_URI)
            _visitor(property);
        for (std::size_t i = property.GetConnectionCount(); i-- > 0;)
            if (Reference connected(property.GetConnectedAsset(i)); connected)
                _waiting.push_back({nullptr, std::move(connected)});
    }

    Visitor _visitor;
    std::unordered_set<const IAssetInstance*> _visited;
    std::vector<Reference> _held;
    std::vector<Step> _waiting;
};

struct IdVisitor
{
    std::unordered_set<std::string>& ids;

    void operator()(const IAssetInstance& asset) const
    {
        UTF8String id;
        asset.GetIdentifier(id);
        ids.insert(id.str());
    }
    void operator()(const IProperty& /*uri*/) const {}
};

struct ImageVisitor
{
    std::vector<std::string>& images;
    std::unordered_set<std::string> seen = {};

    void operator()(const IAssetInstance& /*asset*/) const {}
    void operator()(const IProperty& property)
    {
        UTF8String text;
        if (const auto* uri = dynamic_cast<const IUriValue*>(property.GetValue()))
            uri->GetUri(text, TextForm::Stored);
        if (!text.empty() && seen.insert(text.str()).second)
            images.push_back(text.str());
    }
};

void addPath(std::vector<std::string>& paths,
             const std::optional<assetlib::OverlayTexture>& texture)
{
    if (texture && !texture->path.empty())
        paths.push_back(texture->path);
}

} // namespace

Source loadFiles(const std::vector<std::string>& files, const assetlib::LoadOptions& options)
{
    assetlib::LoadResult result = assetlib::load(files, options);
    if (!result.library)
        throw LoadRefusal(std::move(result.errors));
    return {std::move(*result.library), std::move(result.warnings), files};
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

std::unordered_set<std::string> idsOf(const IAssetInstance& asset)
{
    std::unordered_set<std::string> ids;
    ReachWalk(IdVisitor{ids}).from(asset);
    return ids;
}

std::vector<std::string> imagesOf(const IAssetInstance& asset)
{
    std::vector<std::string> images;
    ReachWalk(ImageVisitor{images}).from(asset);
    return images;
}

} // namespace vyr::batch
