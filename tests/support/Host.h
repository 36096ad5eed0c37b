#pragma once

/// @file
/// What a test can ask of, and do to, the process-wide side of the test host: the asset library that
/// the tests implement over the public interfaces alone.

#include <cstddef>
#include <functional>
#include <source_location>
#include <stdexcept>
#include <string>
#include <vector>

namespace vyr::support
{

/// What the test host throws on request. Of no type that the converter could take for its own.
class HostFault : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// What the host has besides assets; the process starts with these defaults.
struct HostSettings
{
    /// Decides what the path resolver finds; an empty function finds nothing.
    std::function<bool(const std::string& uri, std::string& path)> resolve;
    bool hasResolver = true;
    bool hasManager = true;
};
HostSettings& hostSettings();

/// Back to the state of a fresh process; frees assets that nobody holds.
void resetHost();

/// Assets that somebody still holds a reference to, all threads together.
std::size_t liveAssets();
/// Number of successful IAssetInstance::Clone calls since the last resetHost().
std::size_t cloneCount();

/// Calls that the interfaces rule out: an asset used or given back after its last reference, or an
/// index that is not below the count.
std::vector<std::string> contractBreaches();
void recordBreach(const std::string& what);

/// The operation `operations` calls from now (0: the next one) on this thread throws HostFault, once.
void failAfter(std::size_t operations);
/// Takes failAfter back.
/// @return whether it was still pending.
bool cancelFailure();

/// Every operation of the test library passes here.
void passOperation(std::source_location where = std::source_location::current());

/// Passes, and delivers what it was given.
template <class T>
const T& passing(const T& result, std::source_location where = std::source_location::current())
{
    passOperation(where);
    return result;
}

/// Passes, and delivers the element of that index; null, and a breach, when there is none.
template <class List>
auto entryAt(const List& list, std::size_t index,
             std::source_location where = std::source_location::current()) -> decltype(&list[index])
{
    passOperation(where);
    if (index < list.size())
        return &list[index];
    recordBreach(std::string(where.function_name()) + ": index " + std::to_string(index));
    return nullptr;
}

} // namespace vyr::support
