#pragma once

#include <kelvor/platform/Interface.h>
#include <kelvor/platform/assets/Fwd.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace kelvor::platform::assets
{

/// One typed property of an asset. It belongs to the property table it was asked of.
class KELVOR_PLATFORM_INTERFACE IProperty
{
  public:
    /// Replaces `identifier` by the property's identifier. It is usually the name that finds the
    /// property, and is the stem of the names of companion properties ("<identifier>_colorspace").
    virtual void GetIdentifier(core::string::UTF8String& identifier) const = 0;

    /// A PropertyType, or a code of the host's own that the converter does not read.
    virtual std::uint32_t GetType() const = 0;

    /// The value, owned by the property; null when the property has none. Its interface must be the
    /// one that PropertyType names for the type; a value of another kind counts as a type error.
    virtual const IValue* GetValue() const = 0;

    /// Whether connected assets drive the property. A property of any type may have them.
    virtual bool HasConnections() const = 0;

    /// Number of connected assets.
    virtual std::size_t GetConnectionCount() const = 0;

    /// The connected asset at `index`, with a reference that the caller gives back with
    /// IAssetInstance::Release; null when there is none.
    virtual IAssetInstance* GetConnectedAsset(std::size_t index) const = 0;

  protected:
    IProperty() = default;
    IProperty(const IProperty&) = default;
    IProperty& operator=(const IProperty&) = default;
    ~IProperty() = default;
};

} // namespace kelvor::platform::assets
