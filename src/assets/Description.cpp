#include "assets/Asset.h"

#include <ostream>

#include <kelvor/platform/assets/PropertyType.h>

namespace vyr::MaterialTranslation::assets
{

namespace platform = kelvor::platform::assets;

namespace
{

/// What `read` gives, or `otherwise` where the asset states nothing that can be read: a diagnostic must
/// not make a translation fail.
template <class Value, class Read> Value readOr(Value otherwise, Read read)
{
    try
    {
        return read();
    }
    catch (const PropertyError&)
    {
        return otherwise;
    }
}

void writeValue(const Property& property, std::ostream& stream)
{
    switch (property.type())
    {
    case platform::ePropertyType_Boolean:
        stream << (property.boolean() ? "true" : "false");
        break;
    case platform::ePropertyType_Integer:
        stream << property.integer();
        break;
    case platform::ePropertyType_Scalar:
        stream << property.number();
        break;
    case platform::ePropertyType_Color:
    {
        const Color4 color = property.colorWithAlpha();
        stream << color[0] << ' ' << color[1] << ' ' << color[2] << ' ' << color[3];
        break;
    }
    case platform::ePropertyType_ChoiceList:
        for (const std::string& choice : property.choices())
            stream << choice << ' ';
        break;
    case platform::ePropertyType_String:
        stream << property.string();
        break;
    case platform::ePropertyType_Text:
        stream << property.text();
        break;
    default:
        stream << "(type " << property.type() << ')';
        break;
    }
}

} // namespace

void writeMaterialDescription(const Asset& asset, std::ostream& stream)
{
    const bool hidden = readOr(false, [&] { return asset[hiddenProperty].boolean(false); });
    stream << "Material Class:" << asset.schema() << std::endl;
    stream << "Description: " << asset.description() << std::endl;
    stream << "Name: " << asset.displayName() << std::endl;
    stream << "Hidden or not: " << (hidden ? "YES" : "NO") << std::endl;
}

void writeTextureSchema(const Property& property, std::ostream& stream)
{
    const std::string schema = property.connectedSchema();
    stream << property.name() << " has schema type : " << schema;
    if (schema == noiseSchema)
    {
        const AssetHandle noise = property.connected();
        const std::string unknown = "?";
        stream << " ("
               << readOr(unknown,
                         [&] { return noise ? Asset(*noise)["noise_Type"].choice("?") : unknown; })
               << ')';
    }
    stream << std::endl;
}

void writeProperty(const Property& property, std::ostream& stream)
{
    if (property.isConnected())
        return writeTextureSchema(property, stream);
    stream << property.name() << ": ";
    try
    {
        writeValue(property, stream);
    }
    catch (const PropertyError& error)
    {
        stream << '(' << error.reason() << ')';
    }
    stream << std::endl;
}

} // namespace vyr::MaterialTranslation::assets
