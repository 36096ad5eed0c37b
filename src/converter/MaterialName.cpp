#include "converter/MaterialName.h"

#include <algorithm>

#include "assets/PropertyReaders.h"
#include "core/Text.h"

namespace vyr::MaterialTranslation::converter
{

std::string materialName(const assets::IAssetInstance& asset, bool useIdentifier)
{
    std::string name = assets::GetAssetDisplayName(asset);
    std::erase_if(name, [](char c) { return !core::isAsciiAlphanumeric(c); });
    if (!useIdentifier && !name.empty())
        return core::isAsciiDigit(name.front()) ? "M" + name : name;

    std::string identifier = assets::GetAssetIdentifier(asset);
    std::erase_if(identifier, [](char c) { return c != '_' && !core::isAsciiAlphanumeric(c); });
    return "XID_" + name + "_" + identifier;
}

} // namespace vyr::MaterialTranslation::converter
