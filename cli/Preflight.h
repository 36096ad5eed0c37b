#pragma once

#include <vector>

#include "Commands.h"
#include "Tasks.h"

namespace vyr::cli
{

/// What can be told about the files to be written before anything is: no input is written over, be it
/// a library or an image, the report has a folder to go to, and it is not one of the documents.
/// @return false when something is wrong; standard error then says what.
bool filesAreApart(const ConvertCommand& command, const std::vector<Task>& tasks);

} // namespace vyr::cli
