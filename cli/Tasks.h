#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "CommandLine.h"
#include "Output.h"
#include "Source.h"

namespace vyr::cli
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
    std::vector<Warning> warnings;
};

/// The file that it comes from, and how messages call it.
const std::string& fileOf(const Item& item);
std::string subjectOf(const Item& item);

/// All overlays, in input order, with their names.
std::vector<Task> makeTasks(const OverlayCommand& command, const Source& source);

/// The materials that the command selects, in input order, with their names.
/// @return nothing when a selected material does not exist; standard error then names it.
std::optional<std::vector<Task>> makeTasks(const ConvertCommand& command, const Source& source);

/// What can be told about the files to be written before anything is: no input is written over, be it
/// a library or an image of anything in it, converted or not, the report has a folder to go to, and it is not one of the documents.
/// @return false when something is wrong; standard error then says what.
bool filesAreApart(const DocumentsCommand& command, const std::vector<Task>& tasks,
                   const Source& source);

} // namespace vyr::cli
