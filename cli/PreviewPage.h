#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <MaterialTranslation/Bakes.h>

/// @file
/// The page that shows materials in a browser, from the file system: what is common to all pages, and the pieces of
/// its data, scripts of which the page loads those that it needs.
namespace vyr::cli
{

/// What the page shows of one material or overlay.
struct PageItem
{
    std::string name;
    std::string id;
    /// Schema, or type of an overlay.
    std::string schema;
    /// "material", "decal" or "thread".
    std::string shape;
    std::string file;
    /// Absolute; empty when there is none, and the last message says why.
    std::filesystem::path document;
    /// Images as the document names them.
    std::vector<std::string> images;
    std::vector<std::string> messages;
};

/// How the pieces are made.
struct PageSettings
{
    MaterialTranslation::ImageLimits limits;
    /// Images that are made side by side.
    std::size_t workers = 1;
    /// Whether the page looks for newer versions of itself.
    bool watch = false;
    /// One line that says what is shown.
    std::string about;
};

// What cannot be read or written throws std::runtime_error.

/// Checks that a page can be made in a folder: it has none of somebody else's, and the page was installed.
/// @throws batch::Refusal when not.
void checkCanHoldPage(const std::filesystem::path& folder);

/// Whether what draws was installed.
bool canDraw();

/// Puts what all pages have in common into the folder.
void writeViewer(const std::filesystem::path& folder);

/// The materials and overlays of a report of a conversion, in its order.
std::vector<PageItem> itemsOfReport(const std::filesystem::path& report);

/// Writes the pieces; those of an earlier run that are the same stay as they are, others of one are removed.
void writePieces(const std::filesystem::path& folder, const std::vector<PageItem>& items,
                 const PageSettings& settings);

/// Tells a page that is watching what keeps the newest version from being shown.
void tellPage(const std::filesystem::path& folder, const std::string& problem);

} // namespace vyr::cli
