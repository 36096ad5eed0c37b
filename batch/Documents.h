#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <MaterialTranslation/MaterialXConverter.h>
#include <MaterialXCore/Document.h>

#include "batch/Output.h"
#include "batch/Settings.h"
#include "batch/Tasks.h"

/// @file
/// Documents of a loaded library: they are made side by side, brought into a form, checked and written, and
/// told about in input order.
namespace vyr::batch
{

/// Makes the document of a task; null when there is none. The outcome tells what was lost, and why it
/// failed. An exception fails this task, never the run.
/// @param worker number of the thread, which does one task after the other.
using Translate =
    std::function<MaterialX::DocumentPtr(std::size_t worker, const Task& task, Outcome& outcome)>;

/// Translates materials, with one converter a worker. To be made and destroyed on one thread: each destructor
/// of a converter empties a list that all converters share.
class MaterialTranslators
{
  public:
    MaterialTranslators(const Settings& settings, const OutputFolder& folder, std::size_t workers);

    MaterialX::DocumentPtr translate(std::size_t worker, const Task& task, Outcome& outcome) const;

  private:
    MaterialTranslation::BakeSettings _bakes;
    std::vector<std::unique_ptr<MaterialTranslation::MaterialXConverter>> _converters;
};

/// Translates overlays.
Translate overlayTranslation(const Settings& settings, const OutputFolder& folder);

/// What can be told before anything is written: no file is written over that is read, and the definitions
/// of nodes can be read, where they are needed.
/// @throws Refusal when something is wrong.
void checkCanConvert(const Settings& settings, const std::vector<Task>& tasks,
                     const Source& source);

/// How many threads may be used.
unsigned jobsOf(const Settings& settings);

/// How many of them are of use.
std::size_t workersFor(const Settings& settings, std::size_t tasks);

/// The text of a task's document, with image paths relative to the folder, in the form that is asked for, and
/// checked if that is asked for; what was baked for it lies in the folder. Nothing when there is none: the outcome
/// then tells why, and the caller calls discardLastBakes.
std::optional<std::string> makeText(const Translate& translate, std::size_t worker,
                                    const Task& task, const OutputFolder& folder,
                                    const Settings& settings, Outcome& outcome);

/// What a conversion of many tasks goes by.
struct Run
{
    Translate translate;
    /// Called with the outcomes in the order of the tasks, one at a time.
    std::function<void(std::size_t step, const Outcome& outcome)> deliver;
    /// Whether to stop: documents in hand are finished. Called on any thread.
    std::function<bool()> stop;
};

/// Makes and writes the documents of all tasks.
/// @return how many were delivered: fewer than there are after a stop.
std::size_t convertAll(const Run& run, const std::vector<Task>& tasks, const OutputFolder& folder,
                       const Settings& settings, std::size_t workers);

} // namespace vyr::batch
