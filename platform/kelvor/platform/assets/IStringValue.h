#pragma once

#include <kelvor/platform/assets/IValue.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace kelvor::platform::assets
{

/// A value of one text.
class KELVOR_PLATFORM_INTERFACE IStringValue : public IValue
{
  public:
    /// Replaces `text` by the text, in UTF-8.
    virtual void GetString(core::string::UTF8String& text) const = 0;
};

} // namespace kelvor::platform::assets
