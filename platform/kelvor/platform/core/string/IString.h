#pragma once

#include <kelvor/platform/Interface.h>
#include <kelvor/platform/core/string/UTF8String.h>

namespace kelvor::platform::core::string
{

/// A text that the callee of a public operation fills: the host implements it over whatever string
/// class it has.
///
/// The converter assigns at most once in a call, on the calling thread, and only when the operation
/// yields a text; it keeps no reference afterwards.
class KELVOR_PLATFORM_INTERFACE IString
{
  public:
    /// Replaces the content by a copy of `text`, which is valid during the call only.
    virtual void Assign(const UTF8String& text) = 0;

  protected:
    IString() = default;
    IString(const IString&) = default;
    IString& operator=(const IString&) = default;
    ~IString() = default;
};

} // namespace kelvor::platform::core::string
