#include "support/Assets.h"

#include <algorithm>
#include <atomic>
#include <mutex>

namespace vyr::support
{

namespace
{

std::atomic<std::size_t> live = 0;
std::atomic<std::size_t> clones = 0;

template <class T> const T* addressOf(const std::optional<T>& object)
{
    return object ? &*object : nullptr;
}

class Asset final : public kpa::IAssetInstance
{
  public:
    explicit Asset(std::shared_ptr<const AssetContent> content) : _content(std::move(content))
    {
        ++live;
    }

    void addReference() { ++_references; }

    void Release() override
    {
        if (_references == 0)
            return recordBreach("IAssetInstance::Release: given back twice");
        if (--_references > 0)
            return;
        --live;
        _content.reset();
    }
    void GetDisplayName(UTF8String& name, const char* language) const override
    {
        if (std::string(language) != "eng")
            recordBreach("IAssetInstance::GetDisplayName: language " + std::string(language));
        name = content().displayName;
    }
    void GetDescription(UTF8String& text) const override { text = content().description; }
    const kpa::IAssetIdentity* GetIdentity() const override
    {
        return addressOf(content().identity);
    }
    const kpa::IAssetDefinition* GetDefinition() const override
    {
        return addressOf(content().definition);
    }
    bool HasWorkingPropertyNames() const override { return content().hasWorkingNames; }
    IAssetInstance* Clone() const override;
    void GetIdentifier(UTF8String& text) const override { text = content().identifier; }
    const IPropertyConstTable* GetGenericPropertyTable() const override
    {
        return addressOf(content().genericTable);
    }
    const kpa::IProperty* FindProperty(const UTF8String& name) const override
    {
        return content().table.FindProperty(name);
    }
    std::size_t GetPropertyCount() const override { return content().table.GetPropertyCount(); }
    const kpa::IProperty* GetProperty(std::size_t index) const override
    {
        return content().table.GetProperty(index);
    }

  private:
    const AssetContent& content(std::source_location where = std::source_location::current()) const
    {
        passOperation(where);
        if (_references > 0)
            return *_content;
        recordBreach(std::string(where.function_name()) + ": asset used after its last reference");
        throw std::logic_error("released asset used");
    }

    std::atomic<int> _references = 1;
    std::shared_ptr<const AssetContent> _content;
};

std::mutex poolMutex;
std::deque<Asset> pool;

kpa::IAssetInstance* addToPool(std::shared_ptr<const AssetContent> content)
{
    const std::lock_guard lock(poolMutex);
    return &pool.emplace_back(std::move(content));
}

kpa::IAssetInstance* Asset::Clone() const
{
    if (!content().clonable)
        return nullptr;
    ++clones;
    return addToPool(_content);
}

} // namespace

kpa::IAssetInstance* TestProperty::GetConnectedAsset(std::size_t index) const
{
    const AssetPtr* asset = entryAt(connected, index);
    return asset ? shareAsset(*asset).release() : nullptr;
}

const TestProperty* PropertyTable::FindProperty(const UTF8String& wanted) const
{
    for (const TestProperty& property : passing(properties))
        if (property.name == wanted.str())
            return &property;
    return nullptr;
}

std::size_t liveAssets()
{
    return live;
}

std::size_t cloneCount()
{
    return clones;
}

AssetPtr makeAsset(AssetContent content)
{
    return AssetPtr(addToPool(std::make_shared<const AssetContent>(std::move(content))));
}

AssetPtr shareAsset(const AssetPtr& asset)
{
    if (asset)
        static_cast<Asset&>(*asset).addReference();
    return AssetPtr(asset.get());
}

void resetAssetPool()
{
    clones = 0;
    const std::lock_guard lock(poolMutex);
    if (live == 0)
        pool.clear();
}

} // namespace vyr::support
