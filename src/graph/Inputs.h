#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include "assets/Units.h"
#include "graph/TypeStrings.h"
#include "graph/ValueStrings.h"

namespace vyr::MaterialTranslation::graph
{

/// Types an input and gives it a value. With an empty `type`, the type is that of the value.
template <class Value>
void setInputValue(const MaterialX::InputPtr& input, const Value& value,
                   const std::string& type = {})
{
    input->setType(type.empty() ? typeStringOf<Value>() : type);
    input->setValueString(valueString(value));
}

/// Adds an input with a value.
template <class Value>
MaterialX::InputPtr addTypedInput(const MaterialX::InterfaceElementPtr& node,
                                  const std::string& name, const Value& value)
{
    MaterialX::InputPtr input = node->addInput(name, typeStringOf<Value>());
    input->setValueString(valueString(value));
    return input;
}

/// Adds an input that names a file.
/// @param colorSpace of the file's content; empty for none.
MaterialX::InputPtr addFileInput(const MaterialX::NodePtr& node, const std::string& path,
                                 const std::string& colorSpace);

/// Adds an input without a value, for a connection.
MaterialX::InputPtr addInput(const MaterialX::InterfaceElementPtr& node, const std::string& name,
                             const std::string& type);

/// Connects an input to its source: to a published input of the enclosing graph by its interface
/// name, to a sibling node by its node name. A null source connects nothing. The input's type stays
/// as it is.
void connectInput(const MaterialX::InputPtr& input, const MaterialX::ElementPtr& source);

/// Adds an input to a node, of the type of a node graph's output and connected to it.
MaterialX::InputPtr addConnectedInput(const MaterialX::NodePtr& node, const std::string& name,
                                      const MaterialX::OutputPtr& output);

/// States the unit of an input's value. An empty name is left out, since MaterialX refuses it.
void setInputUnit(const MaterialX::InputPtr& input, const assets::Unit& unit);

} // namespace vyr::MaterialTranslation::graph
