#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include "batch/Output.h"
#include "batch/Settings.h"
#include "batch/Source.h"

namespace vyr::batch
{

/// A material or overlay, borrowed from the source.
using Item = std::variant<const assetlib::Material*, const assetlib::Overlay*>;

/// One material or overlay to convert.
struct Task
{
    Item item;
    /// Material name, which is the document's too.
    std::string name;
    /// Why it cannot be converted, known before anything is; empty when it may be tried.
    std::string refusal;
    /// What loading its files found.
    std::vector<Remark> warnings;
};

/// The file that it comes from, and how messages call it.
const std::string& fileOf(const Item& item);
std::string subjectOf(const Item& item);

/// All overlays, in input order, with their names.
std::vector<Task> overlayTasks(const Source& source);

/// The materials in input order, with their names.
/// @param assets identifiers of the only ones; empty: all.
/// @throws UnknownMaterial naming all that do not exist, a line each.
std::vector<Task> materialTasks(const Source& source,
                                const MaterialTranslation::ConverterOptions& options,
                                const std::vector<std::string>& assets = {});

/// Where the images lie that the files name, also those of what is not converted, links followed and not.
std::set<std::filesystem::path> imagePlaces(const Source& source);

/// What can be told about the files to be written before anything is: no input is written over, be it
/// a library or an image of anything in it, converted or not, the report has a folder to go to, and it is not one of the documents.
/// @throws Refusal when something is wrong.
void checkFilesAreApart(const Settings& settings, const std::vector<Task>& tasks,
                        const Source& source);

} // namespace vyr::batch
