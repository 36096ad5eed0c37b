#pragma once

#include <kelvor/platform/assets/IValue.h>

namespace kelvor::platform::assets
{

/// A value of one or more real numbers that share one unit.
class KELVOR_PLATFORM_INTERFACE IScalarValue : public IValue
{
  public:
    /// Component `index`, below GetComponentCount, in the value's own unit. The converter narrows it
    /// to a 32-bit float and refuses numbers that are not finite there.
    virtual double GetScalar(std::size_t index) const = 0;
};

} // namespace kelvor::platform::assets
