#pragma once

/// @file
/// Assets of JSON text that watch who uses them, and that lie or fail on request: decorators around the assets
/// of vyr::assetlib.

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <kelvor/platform/assets/IAssetInstance.h>
#include <kelvor/platform/assets/IChoiceListValue.h>
#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/IUriValue.h>
#include <vyr/assetlib/Library.h>

#include "support/TemporaryFolder.h"

namespace vyr::hosttests
{

namespace kpa = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using kelvor::platform::core::string::WideString;

/// Owns one reference.
using AssetPtr = std::unique_ptr<kpa::IAssetInstance, kpa::IAssetInstanceDeleter>;

/// What an asset throws on request. Of no type that the converter could take for its own.
class HostFault : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// What a property says in place of the truth; on demand also of connected assets.
struct Lie
{
    std::optional<std::uint32_t> type = {};
    /// A property of this name, of the same asset, whose value is given for this one's; "" gives none.
    std::optional<std::string> valueOf = {};
    /// Every number and every channel.
    std::optional<double> number = {};
    /// The stored and the preferred text of a reference.
    std::optional<std::array<std::string, 2>> uri = {};
    /// No components, nothing selected.
    bool isEmpty = false;
    /// Indices that the list of choices does not have, or no list.
    bool selectsOutside = false;
    bool hasNoChoices = false;
    /// Has connections, none of which can be had, or the first of which is null.
    bool claimsConnections = false;
    bool connectsNull = false;
};

/// What an asset does besides what its properties say.
struct Behaviour
{
    std::map<std::string, Lie> lies = {};
    bool hasIdentity = true;
    bool hasDefinition = true;
    bool canBeCloned = true;
    bool hasWorkingNames = true;
};

/// What was seen of all assets, on all threads together.
struct Watch
{
    std::atomic<std::size_t> live = 0;
    std::mutex mutex;
    /// Calls that the interfaces rule out.
    std::vector<std::string> breaches;
    /// Keeps assets in memory, so that a use after the last reference is seen instead of crashing.
    std::deque<std::shared_ptr<void>> assets;
};

inline Watch& watch()
{
    static Watch watched;
    return watched;
}

inline void recordBreach(const std::string& what)
{
    const std::lock_guard lock(watch().mutex);
    watch().breaches.push_back(what);
}

/// The operations of this thread that still succeed; nothing while all do.
inline thread_local std::optional<std::size_t> operationsLeft;

/// Every operation of a watched asset passes here.
template <class T> T passing(T result)
{
    if (operationsLeft && (*operationsLeft)-- == 0)
    {
        operationsLeft.reset();
        throw HostFault("the host failed");
    }
    return result;
}

inline bool isBelow(std::size_t index, std::size_t count)
{
    if (index >= count)
        recordBreach("index " + std::to_string(index) + " of " + std::to_string(count));
    return index < count;
}

/// What all values have in common.
template <class Interface> class WatchedValue : public Interface
{
  public:
    WatchedValue(const kpa::IValue& value, const Lie& lie)
        : _value(dynamic_cast<const Interface&>(value)), _lie(lie)
    {
    }
    std::size_t GetComponentCount() const override { return passing(count()); }
    std::uint32_t GetUnit() const override { return passing(_value.GetUnit()); }
    bool GetBoolean(std::size_t index) const override
    {
        return passing(isBelow(index, count()) && _value.GetBoolean(index));
    }
    void GetColor(std::size_t index, double& red, double& green, double& blue,
                  double& alpha) const override
    {
        if (passing(isBelow(index, count())))
            _value.GetColor(index, red, green, blue, alpha);
        if (_lie.number)
            red = green = blue = *_lie.number;
    }

  protected:
    std::size_t count() const { return _lie.isEmpty ? 0 : _value.GetComponentCount(); }

    const Interface& _value;
    const Lie& _lie;
};

struct WatchedScalar final : WatchedValue<kpa::IScalarValue>
{
    using WatchedValue::WatchedValue;
    double GetScalar(std::size_t index) const override
    {
        const double truth = passing(isBelow(index, count())) ? _value.GetScalar(index) : 0;
        return _lie.number.value_or(truth);
    }
};

struct WatchedText final : WatchedValue<kpa::IStringValue>
{
    using WatchedValue::WatchedValue;
    void GetString(UTF8String& text, kpa::TextForm form) const override
    {
        passing(0);
        _value.GetString(text, form);
    }
};

struct WatchedUri final : WatchedValue<kpa::IUriValue>
{
    using WatchedValue::WatchedValue;
    void GetUri(UTF8String& text, kpa::TextForm form) const override { give(text, form); }
    void GetUri(WideString& text, kpa::TextForm form) const override { give(text, form); }

  private:
    template <class Text> void give(Text& text, kpa::TextForm form) const
    {
        passing(0);
        _value.GetUri(text, form);
        if (!_lie.uri)
            return;
        const std::string& told = _lie.uri->at(form == kpa::TextForm::Preferred ? 1 : 0);
        using Characters = std::decay_t<decltype(text.str())>;
        text = Text(Characters(told.begin(), told.end()));
    }
};

struct WatchedChoices final : WatchedValue<kpa::IChoiceListValue>, kpa::IChoiceTable
{
    using WatchedValue::WatchedValue;
    std::size_t GetSelectedCount() const override { return passing(selectedCount()); }
    std::int32_t GetSelectedIndex(std::size_t position) const override
    {
        const bool isThere = passing(isBelow(position, selectedCount()));
        constexpr std::int32_t outside[] = {-1, 99};
        return _lie.selectsOutside ? outside[position % 2]
               : isThere           ? _value.GetSelectedIndex(position)
                                   : 0;
    }
    const kpa::IChoiceTable* GetChoiceTable() const override
    {
        return passing(_lie.hasNoChoices ? nullptr : this);
    }
    std::size_t GetChoiceCount() const override
    {
        return passing(_value.GetChoiceTable()->GetChoiceCount());
    }
    const kpa::IChoice* GetChoice(std::size_t index) const override
    {
        const kpa::IChoiceTable& table = *_value.GetChoiceTable();
        return passing(isBelow(index, table.GetChoiceCount())) ? table.GetChoice(index) : nullptr;
    }

  private:
    std::size_t selectedCount() const { return _lie.isEmpty ? 0 : _value.GetSelectedCount(); }
};

/// Integers are plain here: no rule reads any.
inline std::shared_ptr<const kpa::IValue> watchedValue(const kpa::IValue* value, const Lie& lie)
{
    if (dynamic_cast<const kpa::IScalarValue*>(value))
        return std::make_shared<WatchedScalar>(*value, lie);
    if (dynamic_cast<const kpa::IStringValue*>(value))
        return std::make_shared<WatchedText>(*value, lie);
    if (dynamic_cast<const kpa::IUriValue*>(value))
        return std::make_shared<WatchedUri>(*value, lie);
    if (dynamic_cast<const kpa::IChoiceListValue*>(value))
        return std::make_shared<WatchedChoices>(*value, lie);
    return value ? std::make_shared<WatchedValue<kpa::IValue>>(*value, lie) : nullptr;
}

inline kpa::IAssetInstance* watched(AssetPtr asset, std::shared_ptr<const Behaviour> behaviour);

class WatchedProperty final : public kpa::IProperty
{
  public:
    WatchedProperty(const kpa::IProperty& property, const kpa::IPropertyConstTable& table,
                    std::shared_ptr<const Behaviour> behaviour)
        : _property(property), _behaviour(std::move(behaviour))
    {
        property.GetIdentifier(name);
        if (const auto lie = _behaviour->lies.find(name.str()); lie != _behaviour->lies.end())
            _lie = lie->second;
        const kpa::IProperty* donor =
            _lie.valueOf ? table.FindProperty(UTF8String(*_lie.valueOf)) : &property;
        _value = watchedValue(donor ? donor->GetValue() : nullptr, _lie);
    }
    void GetIdentifier(UTF8String& identifier) const override { identifier = passing(name); }
    std::uint32_t GetType() const override
    {
        return passing(_lie.type.value_or(_property.GetType()));
    }
    const kpa::IValue* GetValue() const override { return passing(_value.get()); }
    bool HasConnections() const override
    {
        return passing(_lie.claimsConnections || _lie.connectsNull || _property.HasConnections());
    }
    std::size_t GetConnectionCount() const override
    {
        return passing(_lie.connectsNull ? 1 : _property.GetConnectionCount());
    }
    kpa::IAssetInstance* GetConnectedAsset(std::size_t index) const override
    {
        const std::size_t count = _lie.connectsNull ? 1 : _property.GetConnectionCount();
        if (!passing(isBelow(index, count)) || _lie.connectsNull)
            return nullptr;
        return watched(AssetPtr(_property.GetConnectedAsset(index)), _behaviour);
    }

    UTF8String name;

  private:
    const kpa::IProperty& _property;
    std::shared_ptr<const Behaviour> _behaviour;
    Lie _lie;
    std::shared_ptr<const kpa::IValue> _value;
};

template <class Interface> class WatchedTable : public Interface
{
  public:
    WatchedTable(const kpa::IPropertyConstTable& table,
                 const std::shared_ptr<const Behaviour>& behaviour)
    {
        for (std::size_t i = 0; i < table.GetPropertyCount(); ++i)
            _properties.emplace_back(*table.GetProperty(i), table, behaviour);
    }
    const kpa::IProperty* FindProperty(const UTF8String& name) const override
    {
        touch();
        const auto found = std::find_if(_properties.begin(), _properties.end(),
                                        [&](auto& p) { return p.name.str() == name.str(); });
        return found == _properties.end() ? nullptr : &*found;
    }
    std::size_t GetPropertyCount() const override { return touch(), _properties.size(); }
    const kpa::IProperty* GetProperty(std::size_t index) const override
    {
        touch();
        return isBelow(index, _properties.size()) ? &_properties[index] : nullptr;
    }

  protected:
    /// Before each operation.
    virtual void touch() const { passing(0); }

  private:
    std::deque<WatchedProperty> _properties;
};

class WatchedAsset final : public WatchedTable<kpa::IAssetInstance>
{
  public:
    WatchedAsset(AssetPtr asset, std::shared_ptr<const Behaviour> behaviour)
        : WatchedTable(*asset, behaviour), _asset(std::move(asset)),
          _behaviour(std::move(behaviour))
    {
        if (const kpa::IPropertyConstTable* table = _asset->GetGenericPropertyTable())
            _generic.emplace(*table, _behaviour);
        ++watch().live;
    }
    void Release() override
    {
        if (_isHeld.exchange(false))
            --watch().live;
        else
            recordBreach("a reference was given back twice");
    }
    void GetDisplayName(UTF8String& name, const char* language) const override
    {
        alive().GetDisplayName(name, language);
    }
    void GetDescription(UTF8String& text) const override { alive().GetDescription(text); }
    const kpa::IAssetIdentity* GetIdentity() const override
    {
        return _behaviour->hasIdentity ? alive().GetIdentity() : nullptr;
    }
    const kpa::IAssetDefinition* GetDefinition() const override
    {
        return _behaviour->hasDefinition ? alive().GetDefinition() : nullptr;
    }
    bool HasWorkingPropertyNames() const override
    {
        return alive().HasWorkingPropertyNames() && _behaviour->hasWorkingNames;
    }
    kpa::IAssetInstance* Clone() const override
    {
        touch();
        return _behaviour->canBeCloned ? watched(AssetPtr(_asset->Clone()), _behaviour) : nullptr;
    }
    void GetIdentifier(UTF8String& identifier) const override { alive().GetIdentifier(identifier); }
    const kpa::IPropertyConstTable* GetGenericPropertyTable() const override
    {
        return touch(), _generic ? &*_generic : nullptr;
    }

  private:
    void touch() const override
    {
        if (!_isHeld)
            recordBreach("an asset was used after its last reference");
        passing(0);
    }
    const kpa::IAssetInstance& alive() const { return touch(), *_asset; }

    std::atomic<bool> _isHeld = true;
    AssetPtr _asset;
    std::shared_ptr<const Behaviour> _behaviour;
    std::optional<WatchedTable<kpa::IPropertyConstTable>> _generic;
};

inline kpa::IAssetInstance* watched(AssetPtr asset, std::shared_ptr<const Behaviour> behaviour)
{
    const auto left = std::exchange(operationsLeft, std::nullopt);
    auto made = std::make_shared<WatchedAsset>(std::move(asset), std::move(behaviour));
    operationsLeft = left;
    const std::lock_guard lock(watch().mutex);
    watch().assets.push_back(made);
    return made.get();
}

/// The asset of a material that is written like one of an asset file: its id is "asset-id" and its schema
/// "GenericSchema" unless `members` says otherwise. Images are looked up in `folder`.
inline AssetPtr material(const std::string& members, Behaviour behaviour = {},
                         const std::filesystem::path& folder = {})
{
    const auto lacks = [&](const std::string& key)
    { return members.find("\"" + key + "\":") == std::string::npos; };
    const std::string start =
        std::string(lacks("id") ? R"("id": "asset-id", )" : "") +
        (members.rfind("\"schema\":", 0) == 0 ? "" : R"("schema": "GenericSchema", )");
    const support::TemporaryFolder files;
    const auto file = files.write("assets.json", R"({"assetLibrary": 1, "materials": [{)" + start +
                                                     members + "}]}");
    const auto loaded = assetlib::load({support::TemporaryFolder::utf8(file)},
                                       {{support::TemporaryFolder::utf8(folder)}});
    for (const assetlib::LoadError& error : loaded.errors)
        throw std::invalid_argument(error.format() + " in " + members);
    return AssetPtr(watched(AssetPtr(loaded.library->materials().at(0).asset->Clone()),
                            std::make_shared<const Behaviour>(std::move(behaviour))));
}

/// A material of these properties, written like those of an asset file.
inline AssetPtr generic(const std::string& properties, Behaviour behaviour = {},
                        const std::filesystem::path& folder = {})
{
    return material("\"properties\": {" + properties + "}", std::move(behaviour), folder);
}

/// A property that an image is connected to.
inline std::string textured(const std::string& property, const std::string& image)
{
    return "\"" + property +
           R"(": {"type": "reference", "connected": {"schema": "UnifiedBitmapSchema", "properties":
           {"unifiedbitmap_Bitmap": {"type": "uri", "value": ")" +
           image + R"("}}}})";
}

} // namespace vyr::hosttests
