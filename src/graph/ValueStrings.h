#pragma once

#include <string>

#include <MaterialXCore/Value.h>

namespace vyr::MaterialTranslation::graph
{

/// The text of a value in a document: exactly the bytes of MaterialX's `toValueString`, but without
/// its string stream and locale for each number, which cost more than all else in building a
/// document.
std::string valueString(float value);
std::string valueString(const MaterialX::Color3& value);
std::string valueString(const MaterialX::Vector2& value);
std::string valueString(const MaterialX::Vector3& value);

template <class Value> std::string valueString(const Value& value)
{
    return MaterialX::toValueString(value);
}

} // namespace vyr::MaterialTranslation::graph
