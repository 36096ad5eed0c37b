#pragma once

#include <filesystem>
#include <string>

/// @file
/// Shared libraries while the program runs.
namespace vyr::base
{

/// The folder of the library or program that some code is in, links followed; empty when the system cannot tell.
std::filesystem::path folderOfCode(const void* function);

struct OpenedFunction
{
    /// Null when there is none.
    void* address = nullptr;
    /// Then why, in the system's words.
    std::string failure;
};

/// Loads a library and finds a function in it. The library stays loaded until the process ends.
OpenedFunction openFunction(const std::filesystem::path& library, const char* name);

} // namespace vyr::base
