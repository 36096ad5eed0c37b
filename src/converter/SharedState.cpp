#include "converter/SharedState.h"

#include <stdexcept>

#include <MaterialTranslation/Diagnostics.h>

namespace vyr::MaterialTranslation::converter
{

namespace
{

/// The built-in converter of decal and thread requests.
bool convertOverlay(const MaterialInfo& info, kelvor::platform::core::string::IString& /*result*/)
{
    if (info.type == ConversionType::Decal && !info.payload)
        throw std::invalid_argument("invalid decal info");
    if (info.type == ConversionType::Thread && !info.payload)
        throw std::invalid_argument("invalid thread info");
    // The graphs of decals and threads are still to be built; until then a request fails rather
    // than yielding an empty document.
    LogSession::log().error(DiagnosticCode::NoConverter, "",
                            "this version builds no decal and thread materials");
    return false;
}

/// Made when the library is loaded and destroyed when it is unloaded: before and after everything of a
/// host that was linked to it, static objects included.
SharedState state{
    {}, {{ConversionType::Decal, convertOverlay}, {ConversionType::Thread, convertOverlay}}, {}};

} // namespace

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
