#pragma once

#include <string>
#include <vector>

#include "Loading.h"

namespace vyr::assetlib
{

/// What one file adds to a library.
struct FileContent
{
    /// False when the file could not be read or is no JSON, so that nothing is known of its assets.
    bool isKnown = false;
    std::vector<Material> materials;
    std::vector<Overlay> overlays;
};

/// Reads the report's file; its assets go into the store.
/// @param index of the file in the load.
/// @param programFolders searched last for images.
FileContent readAssetFile(Loading& loading, std::size_t index, Report& report,
                          const std::vector<std::string>& programFolders);

} // namespace vyr::assetlib
