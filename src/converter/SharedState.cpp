#include "converter/SharedState.h"

#include <MaterialTranslation/Diagnostics.h>

#include "converter/OverlayEntry.h"

namespace vyr::MaterialTranslation::converter
{

void RegisteredAssets::append(std::string name, assets::AssetHandle asset)
{
    _entries.push_back({std::move(name), std::move(asset)});
    try
    {
        _names.insert(_entries.back().name);
    }
    catch (...)
    {
        _entries.pop_back();
        throw;
    }
}

void RegisteredAssets::releaseFront()
{
    _names.erase(_entries.front().name);
    _entries.pop_front();
}

void RegisteredAssets::clear()
{
    while (!empty())
        releaseFront();
}

SharedState& sharedState()
{
    static SharedState state{
        {},
        {{ConversionType::Decal, convertOverlay}, {ConversionType::Thread, convertOverlay}},
        {}};
    return state;
}

} // namespace vyr::MaterialTranslation::converter

namespace vyr::MaterialTranslation
{

std::size_t registeredAssetCount()
{
    return converter::sharedState().registered.size();
}

} // namespace vyr::MaterialTranslation
