#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Assets.h"
#include "ImageFinder.h"
#include "Report.h"

namespace vyr::assetlib
{

/// One entry of a "connected" list. Inline assets are known at once, others when all files are read.
struct Connection
{
    Asset* from = nullptr;
    /// Where a property of that asset gets the connected one.
    Asset** slot = nullptr;
    /// The id of the connected asset; empty for an inline one.
    std::string_view id;
    Asset* to = nullptr;
    /// Where it is written: index of the file, and JSON pointer when `id` is set.
    std::size_t file = 0;
    std::string pointer;
};

/// Where an asset with an id is written.
struct AssetOrigin
{
    Asset* asset = nullptr;
    std::string_view file;
    std::string pointer;
};

/// What is common to the files of one load.
struct Loading
{
    Store& store;
    FolderCache folders = {};
    /// Assets with an id, in the order of files and in the order in a file.
    std::vector<Asset*> assets = {};
    std::unordered_map<std::string_view, AssetOrigin> origins = {};
    std::vector<Connection> connections = {};
};

/// What is common to the content of one file.
struct FileScope
{
    Loading& loading;
    std::size_t index;
    Report& report;
    ImageFinder& images;

    Arena& arena() const { return loading.store.arena(); }
};

/// Fills the slots of all connections, and reports ids that no file has and connections that lead
/// back to where they came from.
/// @param reports one a file.
/// @param reportMissing false when an id may be in a file that could not be read.
void connect(Loading& loading, std::vector<Report>& reports, bool reportMissing);

} // namespace vyr::assetlib
