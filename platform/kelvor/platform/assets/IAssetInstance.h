#pragma once

#include <kelvor/platform/assets/IPropertyConstTable.h>

namespace kelvor::platform::assets
{

/// One asset: a material, or a texture that materials connect to. It offers the operations of its
/// own property table itself.
///
/// Assets are counted by reference. Whoever obtained one from Clone or from
/// IProperty::GetConnectedAsset gives it back with Release and never deletes it.
class KELVOR_PLATFORM_INTERFACE IAssetInstance : public IPropertyConstTable
{
  public:
    /// Gives back one reference. The object may be gone when the call returns.
    virtual void Release() = 0;

    /// Replaces `name` by the name shown to people in a language.
    /// @param language an ISO 639-2 code; the converter asks for "eng". An asset without a name in
    ///        that language delivers the name it would show instead, or an empty text.
    virtual void GetDisplayName(core::string::UTF8String& name, const char* language) const = 0;

    /// Replaces `description` by the text that describes the asset; empty when it has none.
    virtual void GetDescription(core::string::UTF8String& description) const = 0;

    /// The object that knows the asset's own name; null when the asset has none.
    virtual const IAssetIdentity* GetIdentity() const = 0;

    /// The object that knows the asset's schema. Null counts as a schema without a name.
    virtual const IAssetDefinition* GetDefinition() const = 0;

    /// Whether the names of the asset's properties may be used to tell what they mean (colour or
    /// data) when nothing else decides it. True for an ordinary asset; false for one whose
    /// properties were renamed or are made up.
    virtual bool HasWorkingPropertyNames() const = 0;

    /// A new asset with the same content, and with a reference that the caller gives back with
    /// Release. Later changes to the original do not show in it. Connected assets may be shared
    /// with the original. Null when the asset cannot be cloned.
    virtual IAssetInstance* Clone() const = 0;

    /// Replaces `identifier` by the text that identifies the asset in its library.
    virtual void GetIdentifier(core::string::UTF8String& identifier) const = 0;

    /// The table of "generic_..." properties that describes a material of another schema in the
    /// terms of "GenericSchema". It belongs to the asset. Null when the asset carries none; a
    /// material of "GenericSchema" needs none.
    virtual const IPropertyConstTable* GetGenericPropertyTable() const = 0;

  protected:
    IAssetInstance() = default;
    IAssetInstance(const IAssetInstance&) = default;
    IAssetInstance& operator=(const IAssetInstance&) = default;
    ~IAssetInstance() = default;
};

/// Gives back one reference when an owning pointer goes.
struct IAssetInstanceDeleter
{
    void operator()(IAssetInstance* asset) const
    {
        if (asset)
            asset->Release();
    }
};

} // namespace kelvor::platform::assets
