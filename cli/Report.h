#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Console.h"
#include "Json.h"
#include "batch/Tasks.h"

namespace vyr::cli
{

/// The JSON report of a run. Not thread-safe.
class Report
{
  public:
    /// @param file empty: there is none, and nothing that is added counts; "-": standard output.
    /// @param things what the tasks are: "materials" or "overlays".
    Report(std::string file, const char* things);

    bool isWanted() const { return !_file.empty(); }

    void add(const batch::Task& task, const batch::Outcome& outcome);

    /// Adds a task that an interrupted run did not come to.
    void addUntried(const batch::Task& task);

    /// Writes all that was added.
    /// @param end how the run ended: "complete" or "interrupted".
    /// @param removed paths of documents and images of earlier runs.
    /// @return false when it cannot be written; standard error then says why.
    bool write(const char* end, const std::vector<std::string>& removed, Results& results);

  private:
    JsonNode addEntry(const batch::Task& task, const char* status);

    std::string _file;
    JsonDocument _document;
    JsonNode _entries;
};

/// The report that an earlier run left in a file is replaced by one of a run that was refused; anything else that
/// is there stays.
void retireReport(const std::string& file);

} // namespace vyr::cli
