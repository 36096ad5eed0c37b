#pragma once

#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>

#include <MaterialTranslation/MaterialXConverter.h>

#include "assets/Asset.h"

namespace vyr::MaterialTranslation::converter
{

/// The assets that wait for serialisation, in the order of registration, under unique names.
class RegisteredAssets
{
  public:
    struct Entry
    {
        std::string name;
        assets::AssetHandle asset;
    };

    bool contains(std::string_view name) const { return _names.contains(name); }
    bool empty() const { return _entries.empty(); }
    std::size_t size() const { return _entries.size(); }
    const Entry& front() const { return _entries.front(); }

    /// The name must not be registered yet.
    void append(std::string name, assets::AssetHandle asset);
    /// Releases the oldest entry's asset.
    void releaseFront();
    /// Releases all assets, in order.
    void clear();

  private:
    std::deque<Entry> _entries;
    /// Of the entries, which stay where they are as long as they are listed.
    std::unordered_set<std::string_view> _names;
};

/// What all converter objects of the process share, from the loading of the library to its unloading.
/// Members are destroyed from the last to the first: the instance's destructor still uses the list.
struct SharedState
{
    RegisteredAssets registered;
    std::map<ConversionType, MaterialXConverter::OverlayConverter> converters;
    std::shared_ptr<MaterialXConverter> instance;
};

SharedState& sharedState();

} // namespace vyr::MaterialTranslation::converter
