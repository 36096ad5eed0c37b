#pragma once

#include <kelvor/platform/Interface.h>
#include <kelvor/platform/assets/Fwd.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace kelvor::platform::assets
{

/// A readable table of named properties.
class KELVOR_PLATFORM_INTERFACE IPropertyConstTable
{
  public:
    /// The property of that name (compared byte by byte), owned by the table; null when there is
    /// none.
    virtual const IProperty* FindProperty(const core::string::UTF8String& name) const = 0;

    /// Number of properties. A table that cannot list its properties reports 0; the converter then
    /// cannot tell which of them it did not read, and warns about none.
    virtual std::size_t GetPropertyCount() const = 0;

    /// The property at `index`, owned by the table, in an order that stays the same.
    virtual const IProperty* GetProperty(std::size_t index) const = 0;

  protected:
    IPropertyConstTable() = default;
    IPropertyConstTable(const IPropertyConstTable&) = default;
    IPropertyConstTable& operator=(const IPropertyConstTable&) = default;
    ~IPropertyConstTable() = default;
};

} // namespace kelvor::platform::assets
