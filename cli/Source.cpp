#include "Source.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <kelvor/platform/assets/PropertyType.h>

#include "Console.h"

namespace vyr::cli
{
namespace
{

using kelvor::platform::assets::IAssetInstance;
using kelvor::platform::assets::IAssetInstanceDeleter;
using kelvor::platform::assets::IProperty;
using kelvor::platform::assets::IPropertyConstTable;
using kelvor::platform::assets::IUriValue;
using kelvor::platform::core::string::UTF8String;
using Reference = std::unique_ptr<IAssetInstance, IAssetInstanceDeleter>;

class ReachWalk
{
  public:
    void visit(const IAssetInstance& asset)
    {
        UTF8String id;
        asset.GetIdentifier(id);
        _reach.ids.insert(id.str());
        visitTable(asset);
        if (const IPropertyConstTable* generic = asset.GetGenericPropertyTable())
            visitTable(*generic);
    }

    Reach take() { return std::move(_reach); }

  private:
    void visitTable(const IPropertyConstTable& table)
    {
        for (std::size_t i = 0; i < table.GetPropertyCount(); ++i)
        {
            if (const IProperty* property = table.GetProperty(i))
                visitProperty(*property);
        }
    }

    void visitProperty(const IProperty& property)
    {
        if (property.GetType() == kelvor::platform::assets::ePropertyType_URI)
            if (const auto* uri = dynamic_cast<const IUriValue*>(property.GetValue()))
                addImage(*uri);
        for (std::size_t i = 0; i < property.GetConnectionCount(); ++i)
        {
            Reference connected(property.GetConnectedAsset(i));
            const IAssetInstance* asset = connected.get();
            if (asset && _visited.insert(asset).second)
            {
                // Kept, so that no other asset gets the address of one that was visited.
                _held.push_back(std::move(connected));
                visit(*asset);
            }
        }
    }

    void addImage(const IUriValue& uri)
    {
        UTF8String text;
        uri.GetUri(text, kelvor::platform::assets::TextForm::Stored);
        if (!text.empty() && std::ranges::find(_reach.images, text.str()) == _reach.images.end())
            _reach.images.push_back(text.str());
    }

    Reach _reach;
    std::unordered_set<const IAssetInstance*> _visited;
    std::vector<Reference> _held;
};

} // namespace

std::optional<Source> loadFiles(const std::vector<std::string>& files,
                                const std::vector<std::string>& texturePaths)
{
    assetlib::LoadOptions options;
    options.texturePaths = texturePaths;
    assetlib::LoadResult result = assetlib::load(files, options);
    for (const assetlib::LoadError& error : result.errors)
        complain(error.format());
    if (!result.library)
        return std::nullopt;
    return Source{std::move(*result.library), std::move(result.warnings)};
}

Reach reachOf(const IAssetInstance& asset)
{
    ReachWalk walk;
    walk.visit(asset);
    return walk.take();
}

} // namespace vyr::cli
