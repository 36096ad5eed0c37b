#include "converter/PlainXml.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace vyr::MaterialTranslation::converter
{

namespace mx = MaterialX;

namespace
{

bool standsAsItIs(std::string_view text)
{
    return std::ranges::none_of(text,
                                [](char c)
                                {
                                    return static_cast<unsigned char>(c) < ' ' || c == '"' ||
                                           c == '&' || c == '<' || c == '>';
                                });
}

/// Whether the element is a tag of this document, which comments, blank lines and what is included are not.
bool isTag(const mx::Element& element)
{
    const std::string& category = element.getCategory();
    return !category.empty() && category != mx::CommentElement::CATEGORY &&
           category != mx::NewlineElement::CATEGORY && !element.hasSourceUri();
}

class Writer
{
  public:
    std::optional<std::string> write(const mx::Document& document)
    {
        _text = "<?xml version=\"1.0\"?>\n";
        if (!open("materialx", document))
            return std::nullopt;
        while (!_open.empty())
            if (!step())
                return std::nullopt;
        return std::move(_text);
    }

  private:
    /// An element whose children are being written. Kept on a stack of its own, since documents may be nested
    /// deeply.
    struct Open
    {
        const mx::Element* element;
        std::string_view tag;
        std::size_t next = 0;
    };

    /// Writes the next child of the innermost element, or its end.
    bool step()
    {
        Open& last = _open.back();
        const std::vector<mx::ElementPtr>& children = last.element->getChildren();
        if (last.next < children.size())
        {
            const mx::Element& child = *children[last.next++];
            return isTag(child) && open(child.getCategory(), child);
        }
        const std::string_view tag = last.tag;
        _open.pop_back();
        indent();
        _text.append("</").append(tag).append(">\n");
        return true;
    }

    bool open(std::string_view tag, const mx::Element& element)
    {
        indent();
        _text.append("<").append(tag);
        if (!element.getName().empty() &&
            !attribute(mx::Element::NAME_ATTRIBUTE, element.getName()))
            return false;
        for (const std::string& name : element.getAttributeNames())
            if (!attribute(name, element.getAttribute(name)))
                return false;
        const bool isEmpty = element.getChildren().empty();
        _text += isEmpty ? " />\n" : ">\n";
        if (!isEmpty)
            _open.push_back({&element, tag});
        return standsAsItIs(tag);
    }

    bool attribute(const std::string& name, const std::string& value)
    {
        _text.append(" ").append(name).append("=\"").append(value).append("\"");
        return standsAsItIs(name) && standsAsItIs(value);
    }

    void indent() { _text.append(2 * _open.size(), ' '); }

    std::string _text;
    std::vector<Open> _open;
};

} // namespace

std::optional<std::string> plainXml(const mx::Document& document)
{
    return Writer().write(document);
}

} // namespace vyr::MaterialTranslation::converter
