#pragma once

#include <string>
#include <type_traits>
#include <typeindex>

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

} // namespace vyr::MaterialTranslation::graph
