#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <string_view>

#include <yyjson.h>

namespace vyr::assetlib
{

class JsonItems;
class Report;

/// One value of a JSON document, or one of its keys. Borrowed from the document, as are its texts.
class JsonValue
{
  public:
    enum class Kind
    {
        Null,
        Boolean,
        Number,
        Text,
        Array,
        Object,
    };

    explicit JsonValue(yyjson_val* value) : _value(value) {}

    Kind kind() const
    {
        // By the parser's types: none, raw number, null, boolean, number, text, array, object.
        constexpr Kind kinds[] = {Kind::Null,   Kind::Number, Kind::Null,  Kind::Boolean,
                                  Kind::Number, Kind::Text,   Kind::Array, Kind::Object};
        return kinds[yyjson_get_type(_value)];
    }
    /// These three are for a value of that kind.
    bool boolean() const { return yyjson_get_bool(_value); }
    /// Infinite when no double holds it.
    double number() const;
    std::string_view text() const { return {yyjson_get_str(_value), yyjson_get_len(_value)}; }
    /// Of an array, or the members of an object, each key once; none of any other value.
    JsonItems items() const;
    /// Of an object; nothing when there is none.
    std::optional<JsonValue> member(std::string_view key) const;

    /// These two are for a member of an object.
    JsonValue key() const { return JsonValue(_value - 1); }
    std::string_view name() const { return key().text(); }

    /// How many keys and values lie between another one of the document and this one, in the order
    /// of the text.
    std::size_t tokensAfter(JsonValue other) const
    {
        return static_cast<std::size_t>(_value - other._value);
    }

  private:
    yyjson_val* _value;
};

/// The values in an array or an object, in the order of the file.
class JsonItems
{
  public:
    class Iterator
    {
      public:
        Iterator(yyjson_val* value, std::size_t left, bool isObject)
            : _value(value), _left(left), _isObject(isObject)
        {
        }
        JsonValue operator*() const { return JsonValue(_value); }
        Iterator& operator++();
        bool operator==(std::default_sentinel_t) const { return _left == 0; }

      private:
        yyjson_val* _value;
        std::size_t _left;
        bool _isObject;
    };

    explicit JsonItems(yyjson_val* container)
        : _container(container), _isObject(yyjson_is_obj(container)),
          _size(yyjson_is_ctn(container) ? yyjson_get_len(container) : 0)
    {
    }

    std::size_t size() const { return _size; }
    bool empty() const { return _size == 0; }
    Iterator begin() const { return {_container + (_isObject ? 2 : 1), _size, _isObject}; }
    static std::default_sentinel_t end() { return {}; }

  private:
    yyjson_val* _container;
    bool _isObject;
    std::size_t _size;
};

inline JsonItems JsonValue::items() const
{
    return JsonItems(_value);
}

/// A JSON text in memory.
class JsonDocument
{
  public:
    /// Arrays and objects inside one another, the outermost counted.
    static constexpr std::size_t maxDepth = 64;

    /// Parses the report's text. Reports broken JSON, keys that an object has twice, of which the first
    /// stays, and nesting deeper than maxDepth, whose content is left out.
    explicit JsonDocument(Report& report);

    /// False when the JSON is broken; there is no root then.
    bool isWhole() const { return _document != nullptr; }
    JsonValue root() const { return JsonValue(yyjson_doc_get_root(_document.get())); }

  private:
    struct Free
    {
        void operator()(yyjson_doc* document) const { yyjson_doc_free(document); }
    };
    std::unique_ptr<yyjson_doc, Free> _document;
};

} // namespace vyr::assetlib
