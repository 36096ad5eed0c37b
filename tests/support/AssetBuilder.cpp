#include "support/AssetBuilder.h"

#include <algorithm>

namespace vyr::support
{

AssetBuilder& AssetBuilder::property(Text name, std::uint32_t type, ValuePtr value)
{
    TestProperty& added = table().emplace_back();
    added.name = name;
    added.type = type;
    added.value = std::move(value);
    return *this;
}

AssetBuilder& AssetBuilder::connect(Text name, const AssetPtr& asset)
{
    const auto isNamed = [&](const TestProperty& property) { return property.name == name; };
    if (std::none_of(table().begin(), table().end(), isNamed))
        property(name, kpa::ePropertyType_Reference, nullptr);
    std::find_if(table().begin(), table().end(), isNamed)->connected.push_back(shareAsset(asset));
    return *this;
}

AssetPtr bitmapAsset(const std::string& path)
{
    return AssetBuilder("UnifiedBitmapSchema")
        .id("bitmap")
        .name("Bitmap")
        .text("VersionGUID", "UnifiedBitmapSchema")
        .uri("unifiedbitmap_Bitmap", path)
        .build();
}

} // namespace vyr::support
