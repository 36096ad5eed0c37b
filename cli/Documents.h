#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include <MaterialXCore/Document.h>

#include "CommandLine.h"
#include "Output.h"
#include "Tasks.h"

/// @file
/// What the commands have in common that make documents: they are made side by side, brought into a form,
/// checked and written, and told about in input order.
namespace vyr::cli
{

/// Makes the document of a task; null when there is none. The outcome tells what was lost, and why it
/// failed. An exception fails this task, never the run.
/// @param worker number of the thread, which does one task after the other.
using Translate =
    std::function<MaterialX::DocumentPtr(std::size_t worker, const Task& task, Outcome& outcome)>;

/// Loads the files of the command, on as many threads as are of use.
/// @return nothing when there is an error; all of them are then on standard error.
std::optional<Source> loadFiles(const DocumentsCommand& command);

/// What can be told before anything is written: no file is written over that is read, and the definitions
/// of nodes can be read, where the command needs them.
/// @return false when something is wrong; standard error then says what.
bool canConvert(const DocumentsCommand& command, const std::vector<Task>& tasks,
                const Source& source);

/// How many threads are of use.
std::size_t workersFor(const DocumentsCommand& command, std::size_t tasks);

/// Makes the documents of all tasks.
/// @param things what the tasks are, for messages and the report: "materials" or "overlays".
ExitStatus convertAll(const DocumentsCommand& command, const std::vector<Task>& tasks,
                      const char* things, const OutputFolder& folder, std::size_t workers,
                      const Translate& translate);

} // namespace vyr::cli
