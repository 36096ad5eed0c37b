#pragma once

#include <kelvor/platform/Interface.h>
#include <kelvor/platform/assets/Fwd.h>

namespace kelvor::platform::assets
{

/// The value of a property. Properties of a Boolean or a colour deliver an IValue as it stands; the
/// other kinds deliver one of the derived interfaces, which the converter reaches by a dynamic cast.
///
/// A value belongs to its property.
class KELVOR_PLATFORM_INTERFACE IValue
{
  public:
    /// Number of components: usually 1, more for a vector of scalars or integers. For a colour it is
    /// the number of colours.
    virtual std::size_t GetComponentCount() const = 0;

    /// The unit of all components, a UnitCode or a code of the host's own.
    virtual std::uint32_t GetUnit() const = 0;

    /// Component `index` of a Boolean value. On any other kind the result means nothing and the
    /// converter does not ask.
    virtual bool GetBoolean(std::size_t index) const = 0;

    /// Colour `index` of a colour property, each channel nominally in 0..1, not limited to it, in
    /// the colour space that the property's "_colorspace" companion declares. On any other kind it
    /// writes nothing and the converter does not ask.
    virtual void GetColor(std::size_t index, double& red, double& green, double& blue,
                          double& alpha) const = 0;

  protected:
    IValue() = default;
    IValue(const IValue&) = default;
    IValue& operator=(const IValue&) = default;
    /// Not deleted through the interface. Virtual only so that each derived interface has a
    /// complete run-time type on every compiler.
    virtual ~IValue() = default;
};

} // namespace kelvor::platform::assets
