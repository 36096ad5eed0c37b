#pragma once

#include <variant>

#include "Commands.h"
#include "ExitStatus.h"

namespace vyr::cli
{

/// What the program has to do: a command, or nothing but to end, because help was printed or the
/// arguments are wrong.
using Request = std::variant<ExitStatus, ConvertCommand, OverlayCommand, ListCommand,
                             ValidateCommand, BakeNormalCommand, BakeNoiseCommand>;

/// Reads the arguments; prints the help and the version to standard output, and what is wrong to
/// standard error.
Request parseCommandLine(int count, const char* const* arguments);

} // namespace vyr::cli
