#pragma once

#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <kelvor/platform/assets/IAssetInstance.h>

#include "assets/Log.h"

namespace vyr::MaterialTranslation::assets
{

using kelvor::platform::assets::IAssetInstance;
using kelvor::platform::assets::IProperty;
using kelvor::platform::assets::IPropertyConstTable;

/// One reference to an asset, given back when the handle goes.
using AssetHandle =
    std::unique_ptr<IAssetInstance, kelvor::platform::assets::IAssetInstanceDeleter>;

/// Whether an asset is connected, and the asset.
using ConnectedAsset = std::pair<bool, AssetHandle>;

/// Which properties of one table were looked up by the rules of a translation. What is left at the
/// end is what no rule reads: a typing error, or something that the document does not say.
class PropertyUse
{
  public:
    /// Looks a property up in the table and notes that its value was.
    /// @return null when the table has none of that name.
    const IProperty* find(const IPropertyConstTable& table, const char* name);
    /// The property's connected texture was taken up, or reported as lost.
    void noteConnection(const IProperty* property);

    bool wasRead(const IProperty* property) const;
    bool wasConnectionTaken(const IProperty* property) const;

  private:
    std::vector<const IProperty*> _read;
    /// The property that was looked up last: rules ask several things of one in a row.
    std::string _lastName;
    const IProperty* _last = nullptr;
    std::vector<const IProperty*> _connections;
};

/// What a reader reads from: an asset, and the table of its properties, its own or its generic one.
///
/// A view borrows both; they must outlive it.
class AssetView
{
  public:
    explicit AssetView(const IAssetInstance& asset, PropertyUse* use = nullptr)
        : AssetView(asset, asset, use)
    {
    }
    AssetView(const IAssetInstance& asset, const IPropertyConstTable& table,
              PropertyUse* use = nullptr)
        : _asset(&asset), _table(&table), _use(use)
    {
    }

    const IAssetInstance& asset() const { return *_asset; }
    const IPropertyConstTable& table() const { return *_table; }
    PropertyUse* use() const { return _use; }

  private:
    const IAssetInstance* _asset;
    const IPropertyConstTable* _table;
    PropertyUse* _use;
};

/// Warns about every property of the view's table that no rule has read, which is how typing errors
/// show, and about every connected asset that was not taken up. Says nothing of a table that does
/// not list its properties, of the two properties that every asset has, and of the declared colour
/// space of a property that was read.
/// @param known names of properties that rules read only under conditions; without an effect they
///        are nothing lost.
void reportLeftProperties(const AssetView& view, std::span<const char* const> known,
                          const Log& log);

} // namespace vyr::MaterialTranslation::assets
