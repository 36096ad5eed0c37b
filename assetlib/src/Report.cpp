#include "Report.h"

#include "Words.h"

namespace vyr::assetlib
{

namespace
{

std::string placed(const std::string& file, const std::string& pointer, const std::string& message)
{
    return pointer.empty() ? file + ": " + message
                           : file + ": " + printable(pointer) + ": " + message;
}

} // namespace

void appendToPointer(std::string& pointer, std::string_view key)
{
    pointer += '/';
    for (const char c : key)
    {
        if (c == '~')
            pointer += "~0";
        else if (c == '/')
            pointer += "~1";
        else
            pointer += c;
    }
}

void appendToPointer(std::string& pointer, std::size_t index)
{
    pointer += '/';
    pointer += std::to_string(index);
}

std::string Place::pointer() const
{
    if (!_parent)
        return {};
    std::string pointer = _parent->pointer();
    if (_name.data())
        appendToPointer(pointer, _name);
    else
        appendToPointer(pointer, _index);
    return pointer;
}

void Report::error(std::string pointer, std::string message)
{
    _errors.push_back({_file, 0, 0, std::move(pointer), std::move(message)});
}

void Report::brokenJson(std::size_t line, std::size_t column, std::string message)
{
    _errors.push_back({_file, line, column, {}, std::move(message)});
}

void Report::warning(const Place& place, std::string_view asset, std::string_view property,
                     std::string message)
{
    _warnings.push_back(
        {_file, place.pointer(), std::string(asset), std::string(property), std::move(message)});
}

std::string LoadError::format() const
{
    if (line != 0)
        return file + ':' + std::to_string(line) + ':' + std::to_string(column) + ": " + message;
    return placed(file, pointer, message);
}

std::string LoadWarning::format() const
{
    return placed(file, pointer, message);
}

} // namespace vyr::assetlib
