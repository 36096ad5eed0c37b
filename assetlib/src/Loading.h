#pragma once

#include <iterator>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Assets.h"
#include "ImageFinder.h"
#include "Report.h"

namespace vyr::assetlib
{

template <class T> void moveBehind(std::vector<T>& all, std::vector<T>&& some)
{
    if (all.empty())
        all = std::move(some);
    else
        all.insert(all.end(), std::make_move_iterator(some.begin()),
                   std::make_move_iterator(some.end()));
}

/// One entry of a "connected" list. Inline assets are known at once, others when all files are read.
struct Connection
{
    Asset* from = nullptr;
    /// Where a property of that asset gets the connected one.
    Asset** slot = nullptr;
    /// The id of the connected asset; empty for an inline one.
    std::string_view id = {};
    Asset* to = nullptr;
    /// Where it is written.
    std::size_t file = 0;
    Report::Token token = 0;
};

/// An id, and where the asset that has it is written.
struct AssetOrigin
{
    std::string_view id;
    Asset* asset = nullptr;
    std::size_t file = 0;
    /// Of the id.
    Report::Token token = 0;
    std::string pointer = {};
};

/// What one thread has read. Lists are in the order of files and in the order in a file.
struct Loading
{
    Shelf& shelf;
    FolderCache folders = {};
    /// Those that are not written inside others.
    std::vector<Asset*> assets = {};
    std::vector<AssetOrigin> origins = {};
    std::vector<Connection> connections = {};
    /// Texts on the shelf that many assets have in common.
    std::unordered_set<std::string_view> commonTexts = {};

    /// Adds what was read of a file behind all this.
    void append(Loading&& part);
};

/// What the readers of one file's content share.
struct FileContext
{
    Loading& loading;
    std::size_t index;
    Report& report;
    ImageFinder& images;

    Arena& arena() const { return loading.shelf.arena(); }

    /// A copy of a text of the document in the store.
    std::string_view keep(std::string_view text) const { return arena().keepText(text); }
    /// The same for names that come again and again: equal ones are one text.
    std::string_view keepCommon(std::string_view text) const
    {
        const auto known = loading.commonTexts.find(text);
        return known != loading.commonTexts.end() ? *known
                                                  : *loading.commonTexts.insert(keep(text)).first;
    }

    /// The path of the image that a text refers to; nothing when the value is no text. Warns of what is
    /// doubtful about it.
    /// @param asset, property for the warning
    const std::string* findImage(JsonValue value, std::string_view asset,
                                 std::string_view property) const;
};

/// What one file adds to a library.
struct FileContent
{
    /// False when the file could not be read or is no JSON, so that nothing is known of its assets.
    bool isKnown = false;
    std::vector<Material> materials;
    std::vector<Overlay> overlays;
};

/// Reads the report's file; its assets go into the store.
/// @param index of the file in the load
FileContent readAssetFile(Store& store, Loading& loading, std::size_t index, Report& report,
                          const LoadOptions& options);

/// Reads one of the assets of a file's "materials" or "textures" into the store, with the assets inside
/// it. Its connections are gathered and filled in later.
/// @return null when there is nothing that others could connect to.
Asset* readAsset(JsonValue value, const std::string& pointer, FileContext& file);

/// A property, and the entries of its "connected" list, to which the reader of the asset attends.
struct PropertyParts
{
    Property property;
    std::optional<JsonValue> connected = std::nullopt;
};

/// Reads a member of "properties" in its long or short form.
/// @param owner for messages: the id of the asset, or of the asset around it
std::optional<PropertyParts> readProperty(JsonValue member, FileContext& file,
                                          std::string_view owner);

/// Reads one of a file's "overlays". Nothing when it is not known what kind of overlay it is.
std::optional<Overlay> readOverlay(JsonValue value, const std::string& pointer, FileContext& file);

/// Fills the slots of all connections, and reports ids that several assets have or no file has, and
/// connections that lead back to where they came from.
/// @param reports one a file
/// @param reportMissing false when an id may be in a file that could not be read
void connect(Loading& loading, std::vector<Report>& reports, bool reportMissing);

} // namespace vyr::assetlib
