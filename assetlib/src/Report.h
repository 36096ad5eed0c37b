#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vyr/assetlib/Library.h>

namespace vyr::assetlib
{

/// A place in a JSON document, as a chain of keys and indices on the stack of the readers: the text is
/// only made when it is needed.
class Place
{
  public:
    Place() = default;
    Place key(std::string_view name) const { return Place(this, name, 0); }
    Place item(std::size_t index) const { return Place(this, {}, index); }

    /// The JSON pointer, with "~" and "/" in keys escaped.
    std::string pointer() const;

  private:
    Place(const Place* parent, std::string_view name, std::size_t index)
        : _parent(parent), _name(name), _index(index)
    {
    }

    const Place* _parent = nullptr;
    std::string_view _name;
    std::size_t _index = 0;
};

/// A key or an index as a part of a JSON pointer, with its "/".
void appendToPointer(std::string& pointer, std::string_view key);
void appendToPointer(std::string& pointer, std::size_t index);

/// What is wrong with one file.
class Report
{
  public:
    explicit Report(std::string file) : _file(std::move(file)) {}

    const std::string& file() const { return _file; }
    void error(const Place& place, std::string message)
    {
        error(place.pointer(), std::move(message));
    }
    void error(std::string pointer, std::string message);
    void brokenJson(std::size_t line, std::size_t column, std::string message);
    void warning(const Place& place, std::string_view asset, std::string_view property,
                 std::string message);

    /// Adds the errors of another report on the same file.
    void append(const Report& other)
    {
        _errors.insert(_errors.end(), other._errors.begin(), other._errors.end());
    }

    const std::vector<LoadError>& errors() const { return _errors; }
    const std::vector<LoadWarning>& warnings() const { return _warnings; }

  private:
    std::string _file;
    std::vector<LoadError> _errors;
    std::vector<LoadWarning> _warnings;
};

} // namespace vyr::assetlib
