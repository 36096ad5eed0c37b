#include "materials/legacy/NamedSchema.h"

#include <algorithm>

namespace vyr::MaterialTranslation
{

namespace materials::legacy
{

NamedSchema::NamedSchema(const Schema& schema) : _schema(&schema)
{
    for (const auto group : schema.groups)
        for (const Row& row : group)
        {
            PropertyRow property = row.property;
            const std::string& name = _texts.emplace_back(nameOf(property.name));
            property.name = name.c_str();
            const std::string prefix = name.substr(0, name.find('_') + 1);
            std::string& choices = _texts.emplace_back();
            for (const Preset& preset : row.presets)
                choices += (choices.empty() ? "" : " ") + prefix + preset.name;
            property.choices = choices.c_str();
            for (const Assignment& standard : schema.defaults)
                if (standard.field == row.field && row.presets.empty())
                    property.fallback = standard.value;
            _rows.push_back({&row, property});
            _properties.push_back(property);
        }
}

std::string NamedSchema::nameOf(std::string_view name) const
{
    return name.starts_with(':') ? std::string(name.substr(1))
                                 : std::string(_schema->prefix) + '_' + std::string(name);
}

const std::deque<NamedSchema>& namedSchemas()
{
    static const std::deque<NamedSchema> named = []
    {
        std::vector<const Schema*> schemas;
        for (const auto list : {finishSchemas, glassSchemas, masonrySchemas, metalSchemas})
            schemas.insert(schemas.end(), list.begin(), list.end());
        std::ranges::sort(schemas, {},
                          [](const Schema* each) { return std::string_view(each->name); });
        std::deque<NamedSchema> all;
        for (const Schema* schema : schemas)
            all.emplace_back(*schema);
        return all;
    }();
    return named;
}

} // namespace materials::legacy

const std::vector<SchemaRow>& legacyMaterials()
{
    static const std::vector<SchemaRow> rows = []
    {
        std::vector<SchemaRow> all;
        for (const auto& named : materials::legacy::namedSchemas())
            all.push_back({named.schema().name, named.schema().meaning, named.properties().data(),
                           named.properties().size()});
        return all;
    }();
    return rows;
}

} // namespace vyr::MaterialTranslation
