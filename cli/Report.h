#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "Outcome.h"
#include "Tasks.h"

namespace vyr::cli
{

/// Collects what `convert --report` writes.
class Report
{
  public:
    Report();
    void add(const Task& task, const Outcome& outcome);
    /// JSON, UTF-8, with a line end at its end.
    std::string text() const;

  private:
    nlohmann::ordered_json _content;
};

/// JSON as the tool writes it: indented; bytes that are not UTF-8 replaced.
std::string jsonText(const nlohmann::ordered_json& content);

} // namespace vyr::cli
