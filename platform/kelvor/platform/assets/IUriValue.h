#pragma once

#include <kelvor/platform/assets/IValue.h>
#include <kelvor/platform/core/string/UTF8String.h>
#include <kelvor/platform/core/string/WideString.h>

namespace kelvor::platform::assets
{

/// Which of its two texts an IUriValue delivers.
enum class UriForm : std::int32_t
{
    /// The reference as the library stores and shows it: an absolute path or one that the path
    /// resolver knows how to find. This is the form that documents get when nothing resolves it.
    Stored = 0,
    /// The reference in the library's preferred form for looking it up, when it keeps one (for
    /// example an absolute location that it found earlier); otherwise the same text as Stored.
    Preferred = 1,
};

/// A value that refers to a file.
class KELVOR_PLATFORM_INTERFACE IUriValue : public IValue
{
  public:
    /// Replaces `text` by the reference in the form asked for, in UTF-8.
    virtual void GetUri(core::string::UTF8String& text, UriForm form) const = 0;
    /// The same in the platform's wide form.
    virtual void GetUri(core::string::WideString& text, UriForm form) const = 0;
};

} // namespace kelvor::platform::assets
