#pragma once

#include <kelvor/platform/assets/IValue.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace kelvor::platform::assets
{

/// One choice of a choice list.
class KELVOR_PLATFORM_INTERFACE IChoice
{
  public:
    /// Replaces `name` by the choice's name, such as "noise_fractal".
    virtual void GetName(core::string::UTF8String& name) const = 0;

  protected:
    IChoice() = default;
    IChoice(const IChoice&) = default;
    IChoice& operator=(const IChoice&) = default;
    ~IChoice() = default;
};

/// All choices that a choice list offers.
class KELVOR_PLATFORM_INTERFACE IChoiceTable
{
  public:
    virtual std::size_t GetChoiceCount() const = 0;
    /// The choice at `index`, owned by the table; null when there is none at that index.
    virtual const IChoice* GetChoice(std::size_t index) const = 0;

  protected:
    IChoiceTable() = default;
    IChoiceTable(const IChoiceTable&) = default;
    IChoiceTable& operator=(const IChoiceTable&) = default;
    ~IChoiceTable() = default;
};

/// A value that selects some of a list of named choices.
class KELVOR_PLATFORM_INTERFACE IChoiceListValue : public IValue
{
  public:
    /// Number of selected entries.
    virtual std::size_t GetSelectedCount() const = 0;
    /// Index in the choice table of the selected entry `position`, in the order of selection.
    virtual std::int32_t GetSelectedIndex(std::size_t position) const = 0;
    /// The table of choices, owned by the value; may be null when nothing is selected.
    virtual const IChoiceTable* GetChoiceTable() const = 0;
};

} // namespace kelvor::platform::assets
