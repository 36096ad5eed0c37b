#include "assets/Description.h"

#include <ostream>

#include <kelvor/platform/assets/IProperty.h>
#include <kelvor/platform/assets/IScalarValue.h>
#include <kelvor/platform/assets/PropertyType.h>

#include "assets/PropertyError.h"
#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"

namespace vyr::MaterialTranslation::assets
{

namespace platform = kelvor::platform::assets;

namespace
{

bool isHidden(const IAssetInstance& asset)
{
    try
    {
        return GetBooleanOr(AssetView(asset), hiddenProperty, false);
    }
    catch (const PropertyError&)
    {
        return false;
    }
}

/// The type of a noise, or "?" when the asset states none that can be read: a diagnostic must not
/// make a translation fail.
std::string noiseType(const AssetView& noise)
{
    try
    {
        return GetFirstChoiceOr(noise, "noise_Type", "?");
    }
    catch (const PropertyError&)
    {
        return "?";
    }
}

void writeColor(const AssetView& view, const char* name, std::ostream& stream)
{
    const Color4 color = GetColor4Property(view, name);
    stream << color[0] << ' ' << color[1] << ' ' << color[2] << ' ' << color[3];
}

void writeChoices(const AssetView& view, const char* name, std::ostream& stream)
{
    for (const std::string& choice : GetChoiceListProperty(view, name))
        stream << choice << ' ';
}

void writeValue(const AssetView& view, const char* name, std::ostream& stream)
{
    switch (FindProperty(view, name)->GetType())
    {
    case platform::ePropertyType_Boolean:
        stream << (GetBooleanProperty(view, name) ? "true" : "false");
        break;
    case platform::ePropertyType_Scalar:
        stream << GetFloatProperty(view, name);
        break;
    case platform::ePropertyType_Color:
        writeColor(view, name, stream);
        break;
    case platform::ePropertyType_ChoiceList:
        writeChoices(view, name, stream);
        break;
    default:
        stream << "(type " << FindProperty(view, name)->GetType() << ')';
        break;
    }
}

} // namespace

void WriteMaterialDescription(const IAssetInstance& asset, std::ostream& stream)
{
    stream << "Material Class:" << GetAssetSchemaName(asset) << '\n';
    stream << "Description: " << GetAssetDescription(asset) << '\n';
    stream << "Name: " << GetAssetDisplayName(asset) << '\n';
    stream << "Hidden or not: " << (isHidden(asset) ? "YES" : "NO") << '\n';
}

void WriteTextureSchema(const AssetView& view, const char* name, std::ostream& stream)
{
    const std::string schema = GetConnectedTextureName(view, name);
    stream << name << " has schema type : " << schema;
    if (schema == noiseSchema)
    {
        const ConnectedAsset noise = GetConnectedAsset(view, name);
        stream << " (" << noiseType(AssetView(*noise.second)) << ')';
    }
    stream << '\n';
}

void WriteProperty(const AssetView& view, const char* name, std::ostream& stream)
{
    if (HasConnectedAsset(view, name))
    {
        WriteTextureSchema(view, name, stream);
        return;
    }
    stream << name << ": ";
    try
    {
        writeValue(view, name, stream);
    }
    catch (const PropertyError& error)
    {
        stream << '(' << error.reason() << ')';
    }
    stream << '\n';
}

} // namespace vyr::MaterialTranslation::assets
