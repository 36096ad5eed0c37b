#pragma once

#include <kelvor/platform/assets/IStringValue.h>
#include <kelvor/platform/core/string/UTF8String.h>
#include <kelvor/platform/core/string/WideString.h>

namespace kelvor::platform::assets
{

/// A value that refers to a file.
class KELVOR_PLATFORM_INTERFACE IUriValue : public IValue
{
  public:
    /// Replaces `text` by the reference in the form asked for, in UTF-8. Stored is the reference as the
    /// library stores and shows it: an absolute path or one that the path resolver knows how to find,
    /// which documents get when nothing resolves it. Preferred is the one that is best looked up, for
    /// example an absolute location that the library found earlier, if it keeps one.
    virtual void GetUri(core::string::UTF8String& text, TextForm form) const = 0;
    /// The same in the platform's wide form.
    virtual void GetUri(core::string::WideString& text, TextForm form) const = 0;
};

} // namespace kelvor::platform::assets
