#include "converter/MaterialName.h"

#include <algorithm>

#include "assets/PropertyReaders.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::converter
{

std::string materialName(const assets::IAssetInstance& asset, bool useIdentifier)
{
    std::string name = assets::GetAssetDisplayName(asset);
    std::erase_if(name, [](char c) { return !base::isAsciiAlphanumeric(c); });
    if (!useIdentifier && !name.empty())
        return base::isAsciiDigit(name.front()) ? "M" + name : name;

    std::string identifier = assets::GetAssetIdentifier(asset);
    std::erase_if(identifier, [](char c) { return c != '_' && !base::isAsciiAlphanumeric(c); });
    return "XID_" + name + "_" + identifier;
}

} // namespace vyr::MaterialTranslation::converter
