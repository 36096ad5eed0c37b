#pragma once

#include <string>
#include <typeindex>

#include <MaterialXCore/Document.h>

#include "base/Units.h"

/// @file
/// Inputs of nodes: their types, values and connections.
namespace vyr::MaterialTranslation::graph
{

/// MaterialX's name of a value type, such as "integer" for `int`. A type that documents do not use
/// gives its run-time type name in lower case.
const std::string& typeStringOf(const std::type_index& type);

template <class Value> const std::string& typeStringOf()
{
    static const std::string& name = typeStringOf(std::type_index(typeid(Value)));
    return name;
}

/// The text of a value in a document: exactly the bytes of MaterialX's `toValueString`, but without
/// its string stream and locale for each number, which cost more than all else in building a
/// document.
std::string valueString(float value);
std::string valueString(const MaterialX::Color3& value);
std::string valueString(const MaterialX::Vector2& value);
std::string valueString(const MaterialX::Vector3& value);
std::string valueString(const MaterialX::Vector4& value);

template <class Value> std::string valueString(const Value& value)
{
    return MaterialX::toValueString(value);
}

/// Types an input and gives it a value. With an empty `type`, the type is that of the value.
template <class Value>
void setInputValue(const MaterialX::InputPtr& input, const Value& value,
                   const std::string& type = {})
{
    input->setType(type.empty() ? typeStringOf<Value>() : type);
    input->setValueString(valueString(value));
}

/// Adds an input with a value.
/// @param node a pointer to any element with inputs; as it is, since converting it counts references.
template <class Node, class Value>
MaterialX::InputPtr addTypedInput(const Node& node, const std::string& name, const Value& value)
{
    MaterialX::InputPtr input = node->addInput(name, typeStringOf<Value>());
    input->setValueString(valueString(value));
    return input;
}

/// Adds an input that names a file.
/// @param colorSpace of the file's content; empty for none.
void addFileInput(const MaterialX::NodePtr& node, const std::string& path,
                  const std::string& colorSpace);

/// Connects an input to its source: to a published input of the enclosing graph by its interface
/// name, to a sibling node by its node name. A null source connects nothing. The input's type stays
/// as it is.
void connectInput(const MaterialX::InputPtr& input, const MaterialX::ElementPtr& source);

/// Adds an input to a node, of the type of a node graph's output and connected to it.
void addConnectedInput(const MaterialX::NodePtr& node, const std::string& name,
                       const MaterialX::OutputPtr& output);

/// States the unit of an input's value. An empty name is left out, since MaterialX refuses it.
void setInputUnit(const MaterialX::InputPtr& input, const base::Unit& unit);

} // namespace vyr::MaterialTranslation::graph
