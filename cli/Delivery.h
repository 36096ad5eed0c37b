#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Commands.h"
#include "Console.h"
#include "Outcome.h"
#include "Report.h"
#include "Tasks.h"

namespace vyr::cli
{

/// Takes the outcomes of a conversion in input order: prints them, counts them, and notes them for
/// the report. Not thread-safe.
class Delivery
{
  public:
    /// Both are borrowed.
    Delivery(const ConvertCommand& command, const std::vector<Task>& tasks);

    void take(std::size_t step, const Outcome& outcome);

    /// Prints the summary and writes the report; neither is complete when the run was interrupted,
    /// and then there is no report.
    /// @param done number of outcomes that were taken.
    /// @return how the conversion ended.
    ExitStatus finish(std::size_t done);

  private:
    void print(const std::string& messages, const Outcome& outcome);
    bool writeReport() const;

    const ConvertCommand& _command;
    const std::vector<Task>& _tasks;
    Progress _progress;
    Results _results;
    Report _report;
    std::size_t _converted = 0;
    std::size_t _failed = 0;
    std::size_t _warned = 0;
};

} // namespace vyr::cli
