#pragma once

#include <kelvor/platform/assets/IValue.h>

namespace kelvor::platform::assets
{

/// A value of one or more 32-bit integers.
class KELVOR_PLATFORM_INTERFACE IIntegerValue : public IValue
{
  public:
    /// Component `index`, below GetComponentCount.
    virtual std::int32_t GetInteger(std::size_t index) const = 0;
};

} // namespace kelvor::platform::assets
