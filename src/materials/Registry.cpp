#include <algorithm>
#include <iterator>

#include <MaterialTranslation/Schemas.h>

#include "assets/Asset.h"
#include "materials/GenericRows.h"

// The registry of schemas as a whole. Each table stands beside the code that reads by it.
namespace vyr::MaterialTranslation
{

const std::vector<SchemaRow>& genericMaterials()
{
    static const std::vector<PropertyRow> rows = []
    {
        std::vector<PropertyRow> all;
        std::ranges::transform(materials::genericProperties, std::back_inserter(all),
                               &materials::GenericProperty::row);
        return all;
    }();
    static const std::vector<SchemaRow> schemas = {
        {assets::genericSchema,
         "a material in the terms of a standard surface. Materials of other schemas may carry "
         "these "
         "properties too, as their generic table",
         rows.data(), rows.size()}};
    return schemas;
}

const std::vector<SchemaGroup>& schemaGroups()
{
    static const std::vector<SchemaGroup> groups = {
        {"Generic materials", &genericMaterials(), false},
        {"Lyrex materials", &lyrexMaterials(), false},
        {"Legacy materials", &legacyMaterials(), false},
        {"Images", &imageTextures(), true},
        {"Procedural textures", &proceduralTextures(), true},
    };
    return groups;
}

const SchemaRow* findSchema(std::string_view name)
{
    for (const SchemaGroup& group : schemaGroups())
        if (const auto row = std::ranges::find(*group.schemas, name, &SchemaRow::name);
            row != group.schemas->end())
            return &*row;
    return nullptr;
}

} // namespace vyr::MaterialTranslation
