#include "graph/Values.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <mutex>
#include <unordered_map>

#include "base/Text.h"

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

namespace
{

using TypeTable = std::unordered_map<std::type_index, std::string>;

template <class Value> TypeTable::value_type row(const char* name)
{
    return {std::type_index(typeid(Value)), name};
}

const TypeTable& typeTable()
{
    static const TypeTable table{
        row<mx::Color3>("color3"),     row<mx::Color4>("color4"),   row<mx::Vector2>("vector2"),
        row<mx::Vector3>("vector3"),   row<mx::Vector4>("vector4"), row<mx::Matrix33>("matrix33"),
        row<mx::Matrix44>("matrix44"), row<float>("float"),         row<int>("integer"),
        row<bool>("boolean"),          row<std::string>("string"),
    };
    return table;
}

/// Names of types outside the table, kept so that a reference can be returned.
const std::string& unknownTypeString(const std::type_index& type)
{
    static std::mutex mutex;
    static TypeTable names;
    std::string name = type.name();
    std::ranges::transform(name, name.begin(), base::toAsciiLower);
    const std::lock_guard lock(mutex);
    return names.try_emplace(type, std::move(name)).first->second;
}

// MaterialX's own default. A host may have chosen another for its thread; it then holds for us too.
constexpr int defaultPrecision = 6;

bool formattingIsDefault()
{
    return mx::Value::getFloatFormat() == mx::Value::FloatFormatDefault &&
           mx::Value::getFloatPrecision() == defaultPrecision;
}

template <class Vector> std::string join(const Vector& value)
{
    std::string text = valueString(value[0]);
    for (std::size_t i = 1; i < value.numElements(); ++i)
        text.append(mx::ARRAY_PREFERRED_SEPARATOR).append(valueString(value[i]));
    return text;
}

} // namespace

const std::string& typeStringOf(const std::type_index& type)
{
    const auto row = typeTable().find(type);
    return row == typeTable().end() ? unknownTypeString(type) : row->second;
}

std::string valueString(float value)
{
    if (!formattingIsDefault())
        return mx::toValueString(value);
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::general, defaultPrecision);
    return {text.data(), end.ptr};
}

std::string valueString(const mx::Color3& value)
{
    return join(value);
}

std::string valueString(const mx::Vector2& value)
{
    return join(value);
}

std::string valueString(const mx::Vector3& value)
{
    return join(value);
}

std::string valueString(const mx::Vector4& value)
{
    return join(value);
}

void addFileInput(const mx::NodePtr& node, const std::string& path, const std::string& colorSpace)
{
    const mx::InputPtr input = node->addInput("file", mx::FILENAME_TYPE_STRING);
    input->setValueString(path);
    if (!colorSpace.empty())
        input->setColorSpace(colorSpace);
}

void connectInput(const mx::InputPtr& input, const mx::ElementPtr& source)
{
    if (!source)
        return;
    if (source->asA<mx::Input>())
        input->setInterfaceName(source->getName());
    else
        input->setNodeName(source->getName());
}

void addConnectedInput(const mx::NodePtr& node, const std::string& name,
                       const mx::OutputPtr& output)
{
    node->addInput(name, output->getType())->setConnectedOutput(output);
}

void setInputUnit(const mx::InputPtr& input, const base::Unit& unit)
{
    if (!unit.name.empty())
        input->setUnit(unit.name);
    if (!unit.type.empty())
        input->setUnitType(unit.type);
}

} // namespace vyr::MaterialTranslation::graph
