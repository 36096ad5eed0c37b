#pragma once

#include <kelvor/platform/Interface.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace kelvor::platform::assets
{

/// Knows the schema that an asset was made from. It belongs to the asset or outlives it.
class KELVOR_PLATFORM_INTERFACE IAssetDefinition
{
  public:
    /// Replaces `name` by the schema's name, for example "GenericSchema".
    virtual void GetName(core::string::UTF8String& name) const = 0;

  protected:
    IAssetDefinition() = default;
    IAssetDefinition(const IAssetDefinition&) = default;
    IAssetDefinition& operator=(const IAssetDefinition&) = default;
    ~IAssetDefinition() = default;
};

} // namespace kelvor::platform::assets
