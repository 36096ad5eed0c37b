#pragma once

#include <kelvor/platform/assets/IValue.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace kelvor::platform::assets
{

/// Which of its two texts a value delivers.
enum class TextForm : std::int32_t
{
    /// The text as the library stores and shows it.
    Stored = 0,
    /// The form that the library prefers, when it keeps one; otherwise the same text as Stored.
    Preferred = 1,
};

/// A value of one text.
class KELVOR_PLATFORM_INTERFACE IStringValue : public IValue
{
  public:
    /// Replaces `text` by the text in the form asked for, in UTF-8. The converter asks for Stored.
    virtual void GetString(core::string::UTF8String& text, TextForm form) const = 0;
};

} // namespace kelvor::platform::assets
