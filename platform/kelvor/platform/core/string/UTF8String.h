#pragma once

#include <string>
#include <string_view>
#include <utility>

#include <kelvor/platform/Interface.h>

namespace kelvor::platform::core::string
{

/// A text in UTF-8, held by value.
///
/// The class checks nothing: a text that is not UTF-8 passes through unchanged, and whoever writes
/// it out decides what to do with it. Equality compares bytes. A moved-from text is empty.
/// Different objects may be used from different threads; one object from one thread at a time.
class KELVOR_PLATFORM_INTERFACE UTF8String
{
  public:
    UTF8String() = default;

    /// @param text NUL-terminated; null counts as empty. Copied.
    UTF8String(const char* text) : _text(text ? text : "") {}
    UTF8String(std::string text) noexcept : _text(std::move(text)) {}
    explicit UTF8String(std::string_view text) : _text(text) {}

    UTF8String(const UTF8String&) = default;
    UTF8String& operator=(const UTF8String&) = default;
    UTF8String(UTF8String&& other) noexcept : _text(std::move(other._text)) { other._text.clear(); }
    UTF8String& operator=(UTF8String&& other) noexcept
    {
        if (this != &other)
        {
            _text = std::move(other._text);
            other._text.clear();
        }
        return *this;
    }
    ~UTF8String() = default;

    /// The text, NUL-terminated; valid until the object is changed or destroyed.
    const char* c_str() const noexcept { return _text.c_str(); }
    /// The text as a standard string; the reference lives as long as the object.
    const std::string& str() const noexcept { return _text; }
    /// Number of bytes, without the terminating NUL.
    std::size_t size() const noexcept { return _text.size(); }
    bool empty() const noexcept { return _text.empty(); }

    friend bool operator==(const UTF8String& a, const UTF8String& b) noexcept
    {
        return a._text == b._text;
    }
    friend bool operator!=(const UTF8String& a, const UTF8String& b) noexcept { return !(a == b); }

  private:
    std::string _text;
};

} // namespace kelvor::platform::core::string
