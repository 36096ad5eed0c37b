#pragma once

/// @file
/// What a test can ask of, and do to, the process-wide side of the test host: the asset library that
/// the tests implement over the public interfaces alone.

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace vyr::support
{

/// What the test host throws on request. Of no type that the converter could take for its own.
class HostFault : public std::runtime_error
{
  public:
    explicit HostFault(const std::string& operation) : std::runtime_error(operation) {}
};

/// Assets that somebody still holds a reference to, all threads together.
std::size_t liveAssets();

/// Number of successful IAssetInstance::Clone calls since the last resetHost().
std::size_t cloneCount();

/// Calls that the interfaces rule out: an asset used or given back after its last reference, an index
/// that is not below the count, a Boolean asked of a value that is none.
std::vector<std::string> contractBreaches();
void recordBreach(const std::string& what);

/// The operation `operations` calls from now (0: the next one) on this thread throws HostFault, once.
void failAfter(std::size_t operations);
/// Takes failAfter back.
/// @return whether it was still pending.
bool cancelFailure();
/// Every operation of the test library passes here.
void passOperation(const char* name);

/// Decides what the path resolver finds; an empty function finds nothing.
using Resolver = std::function<bool(const std::string& uri, std::string& path)>;
void setResolver(Resolver resolver);

/// What GetIAssetLibraryManager delivers.
enum class LibraryPresence
{
    Full,
    NoResolver,
    NoManager,
};
void setLibraryPresence(LibraryPresence presence);

/// Back to the state of a fresh process; frees assets that nobody holds.
void resetHost();

} // namespace vyr::support
