#pragma once

#include <kelvor/platform/Interface.h>
#include <kelvor/platform/assets/Fwd.h>
#include <kelvor/platform/core/string/UTF8String.h>
#include <kelvor/platform/core/string/WideString.h>

namespace kelvor::platform::assets
{

/// Finds files for references.
class KELVOR_PLATFORM_INTERFACE IPathResolver
{
  public:
    /// Looks the reference `uri` up.
    /// @param path receives the file's path, absolute where the host can; unchanged when nothing was
    ///        found.
    /// @return true when a file was found.
    virtual bool Resolve(const core::string::UTF8String& uri,
                         core::string::UTF8String& path) const = 0;
    /// The same in the platform's wide form.
    virtual bool Resolve(const core::string::WideString& uri,
                         core::string::WideString& path) const = 0;

  protected:
    IPathResolver() = default;
    IPathResolver(const IPathResolver&) = default;
    IPathResolver& operator=(const IPathResolver&) = default;
    ~IPathResolver() = default;
};

/// The asset library as a whole.
class KELVOR_PLATFORM_INTERFACE IAssetLibraryManager
{
  public:
    /// The resolver for image references, owned by the manager; null when the library has none:
    /// references are then taken as they stand. Used from every thread that translates.
    virtual const IPathResolver* GetPathResolver() const = 0;

  protected:
    IAssetLibraryManager() = default;
    IAssetLibraryManager(const IAssetLibraryManager&) = default;
    IAssetLibraryManager& operator=(const IAssetLibraryManager&) = default;
    ~IAssetLibraryManager() = default;
};

/// The asset library of this process.
///
/// The converter only declares this function: **the host defines it**, in its program or in one of
/// its libraries, and it is the one symbol that the converter's shared library leaves undefined.
/// @return an object that lives as long as the converter is used; null when there is no library.
KELVOR_PLATFORM_HOST_DEFINED IAssetLibraryManager* GetIAssetLibraryManager();

} // namespace kelvor::platform::assets
