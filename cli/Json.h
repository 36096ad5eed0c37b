#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <yyjson.h>

#include "base/Text.h"

/// @file
/// JSON as the tool writes it. Running out of memory throws.
namespace vyr::cli
{

/// An object or a list in a JsonDocument, which must outlive it. What is added comes last. Keys are
/// literals; bytes of texts that are not UTF-8 are replaced.
class JsonNode
{
  public:
    JsonNode() = default;
    JsonNode(yyjson_mut_doc* document, yyjson_mut_val* value) : _document(document), _value(value)
    {
        require(value);
    }

    void add(const char* key, std::string_view text) const
    {
        const std::string valid = base::validUtf8(text);
        require(yyjson_mut_obj_add_strncpy(_document, _value, key, valid.data(), valid.size()));
    }

    void addInteger(const char* key, int number) const
    {
        require(yyjson_mut_obj_add_int(_document, _value, key, number));
    }

    void addCount(const char* key, std::int64_t count) const
    {
        require(yyjson_mut_obj_add_sint(_document, _value, key, count));
    }

    void addFlag(const char* key, bool flag) const
    {
        require(yyjson_mut_obj_add_bool(_document, _value, key, flag));
    }

    /// In as few digits as tell it from its neighbours; null for what is not finite.
    void addNumber(const char* key, float number) const
    {
        require(std::isfinite(number) ? yyjson_mut_obj_add_float(_document, _value, key, number)
                                      : yyjson_mut_obj_add_null(_document, _value, key));
    }

    void addNumbers(const char* key, std::span<const float> numbers) const
    {
        const JsonNode list = addList(key);
        for (const float number : numbers)
            require(yyjson_mut_arr_add_float(_document, list._value, number));
    }

    /// Null in place of a text that there is none of.
    void addOrNull(const char* key, std::string_view text) const
    {
        if (text.empty())
            require(yyjson_mut_obj_add_null(_document, _value, key));
        else
            add(key, text);
    }

    void add(const char* key, const std::vector<std::string>& texts) const
    {
        const JsonNode list = addList(key);
        for (const std::string& text : texts)
        {
            const std::string valid = base::validUtf8(text);
            require(yyjson_mut_arr_add_strncpy(_document, list._value, valid.data(), valid.size()));
        }
    }

    JsonNode addList(const char* key) const
    {
        return {_document, yyjson_mut_obj_add_arr(_document, _value, key)};
    }

    JsonNode addObject(const char* key) const
    {
        return {_document, yyjson_mut_obj_add_obj(_document, _value, key)};
    }

    /// Adds an object to a list.
    JsonNode addObject() const { return {_document, yyjson_mut_arr_add_obj(_document, _value)}; }

  private:
    /// What yyjson makes is null or false only when there is no memory left.
    template <class Made> static void require(Made made)
    {
        if (!made)
            throw std::bad_alloc();
    }

    yyjson_mut_doc* _document = nullptr;
    yyjson_mut_val* _value = nullptr;
};

class JsonDocument
{
  public:
    JsonDocument() : _document(yyjson_mut_doc_new(nullptr), yyjson_mut_doc_free)
    {
        yyjson_mut_doc_set_root(_document.get(), yyjson_mut_obj(_document.get()));
    }

    /// The object that holds everything.
    JsonNode root() const { return {_document.get(), yyjson_mut_doc_get_root(_document.get())}; }

    /// Indented by two spaces, UTF-8, with a line end at its end.
    std::string text() const { return written(YYJSON_WRITE_PRETTY_TWO_SPACES); }

    /// The same on one line.
    std::string line() const { return written(YYJSON_WRITE_NOFLAG); }

  private:
    std::string written(yyjson_write_flag form) const
    {
        std::size_t length = 0;
        const std::unique_ptr<char, decltype(&std::free)> text(
            yyjson_mut_write(_document.get(), form, &length), &std::free);
        if (!text)
            throw std::bad_alloc();
        std::string json(text.get(), length);
        // The digits of escapes ("\u001b") are small, as most writers have them.
        for (std::size_t at = json.find('\\'); at != json.npos; at = json.find('\\', at + 2))
            if (json[at + 1] == 'u')
                for (std::size_t digit = at + 2; digit < at + 6; ++digit)
                    json[digit] = base::toAsciiLower(json[digit]);
        return json += '\n';
    }

    std::unique_ptr<yyjson_mut_doc, void (*)(yyjson_mut_doc*)> _document;
};

} // namespace vyr::cli
