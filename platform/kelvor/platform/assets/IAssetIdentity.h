#pragma once

#include <kelvor/platform/Interface.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace kelvor::platform::assets
{

/// Knows the own name of an asset, as opposed to the name shown to people. It belongs to the asset.
class KELVOR_PLATFORM_INTERFACE IAssetIdentity
{
  public:
    /// Replaces `name` by the asset's own name, for example "Lyrex-204".
    virtual void GetName(core::string::UTF8String& name) const = 0;

  protected:
    IAssetIdentity() = default;
    IAssetIdentity(const IAssetIdentity&) = default;
    IAssetIdentity& operator=(const IAssetIdentity&) = default;
    ~IAssetIdentity() = default;
};

} // namespace kelvor::platform::assets
