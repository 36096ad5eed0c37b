#include "graph/TypeStrings.h"

#include <mutex>
#include <unordered_map>

#include <MaterialXCore/Types.h>

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

std::string lowerCaseName(const std::type_index& type)
{
    std::string name = type.name();
    for (char& c : name)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return name;
}

/// Names of types outside the table, kept so that a reference can be returned.
const std::string& unknownTypeString(const std::type_index& type)
{
    static std::mutex mutex;
    static TypeTable names;
    const std::lock_guard lock(mutex);
    return names.try_emplace(type, lowerCaseName(type)).first->second;
}

} // namespace

const std::string& typeStringOf(const std::type_index& type)
{
    const auto row = typeTable().find(type);
    return row == typeTable().end() ? unknownTypeString(type) : row->second;
}

} // namespace vyr::MaterialTranslation::graph
