#pragma once

#include <vector>

#include "CommandLine.h"
#include "batch/Documents.h"
#include "batch/Refusal.h"

/// @file
/// What the commands have in common that make documents: what comes of each is told in input order.
namespace vyr::cli
{

/// Tells each reason of a refusal.
void complainOf(const batch::Refusal& refusal);

/// Loads the files of the command, on as many threads as are of use.
/// @throws batch::LoadRefusal, and batch::Refusal where standard input cannot be taken.
batch::Source loadFiles(const DocumentsCommand& command);

/// As batch::checkCanConvert, for what the command adds.
/// @throws batch::Refusal
void checkCanConvert(const DocumentsCommand& command, const std::vector<batch::Task>& tasks,
                     const batch::Source& source);

/// Makes the documents of all tasks.
/// @param things what the tasks are, for messages and the report: "materials" or "overlays".
ExitStatus convertAll(const DocumentsCommand& command, const std::vector<batch::Task>& tasks,
                      const batch::Source& source, const char* things,
                      const batch::OutputFolder& folder, std::size_t workers,
                      const batch::Translate& translate);

} // namespace vyr::cli
