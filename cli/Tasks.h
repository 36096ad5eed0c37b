#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <MaterialTranslation/MaterialXConverter.h>

#include "Commands.h"
#include "Outcome.h"
#include "Source.h"

namespace vyr::cli
{

/// One material to convert.
struct Task
{
    /// Borrowed from the source.
    const assetlib::Material* material = nullptr;
    /// Material name, which is the document's too.
    std::string name;
    /// Why it cannot be converted, known before anything is; empty when it may be tried.
    std::string refusal;
    /// What loading its files found.
    std::vector<Warning> warnings;
};

/// How messages call a material: `material "mat-3" (GenericSchema)`.
std::string subjectOf(const assetlib::Material& material);

/// The materials that the command selects, in input order, with their names.
/// @param converter asked for the names.
/// @return nothing when a selected material does not exist; standard error then names it.
std::optional<std::vector<Task>> makeTasks(const ConvertCommand& command, const Source& source,
                                           MaterialTranslation::MaterialXConverter& converter);

} // namespace vyr::cli
