#pragma once

#include <string>

#include <kelvor/platform/core/string/IString.h>

namespace vyr::support
{

/// A text that public operations fill, and that knows how often they did.
class StringSink final : public kelvor::platform::core::string::IString
{
  public:
    void Assign(const kelvor::platform::core::string::UTF8String& assigned) override
    {
        text = assigned.str();
        ++assignments;
    }

    std::string text = "untouched";
    int assignments = 0;
};

} // namespace vyr::support
