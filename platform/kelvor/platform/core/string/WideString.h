#pragma once

#include <string>
#include <utility>

#include <kelvor/platform/Interface.h>

namespace kelvor::platform::core::string
{

/// A text in the platform's wide form, held by value: UTF-16 where `wchar_t` has 16 bits (Windows),
/// UTF-32 elsewhere.
///
/// Like UTF8String it checks nothing, compares code units, and is empty after being moved from.
class KELVOR_PLATFORM_INTERFACE WideString
{
  public:
    WideString() = default;

    /// @param text NUL-terminated; null counts as empty. Copied.
    WideString(const wchar_t* text) : _text(text ? text : L"") {}
    WideString(std::wstring text) noexcept : _text(std::move(text)) {}

    WideString(const WideString&) = default;
    WideString& operator=(const WideString&) = default;
    WideString(WideString&& other) noexcept : _text(std::move(other._text)) { other._text.clear(); }
    WideString& operator=(WideString&& other) noexcept
    {
        if (this != &other)
        {
            _text = std::move(other._text);
            other._text.clear();
        }
        return *this;
    }
    ~WideString() = default;

    /// The text, NUL-terminated; valid until the object is changed or destroyed.
    const wchar_t* c_str() const noexcept { return _text.c_str(); }
    /// The text as a standard string; the reference lives as long as the object.
    const std::wstring& str() const noexcept { return _text; }
    /// Number of code units, without the terminating NUL.
    std::size_t size() const noexcept { return _text.size(); }
    bool empty() const noexcept { return _text.empty(); }

    friend bool operator==(const WideString& a, const WideString& b) noexcept
    {
        return a._text == b._text;
    }
    friend bool operator!=(const WideString& a, const WideString& b) noexcept { return !(a == b); }

  private:
    std::wstring _text;
};

} // namespace kelvor::platform::core::string
