#include "assets/Asset.h"
#include "assets/ColorSpaces.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "textures/ImageRows.h"
#include "textures/Kinds.h"

namespace vyr::MaterialTranslation::textures
{

namespace
{

constexpr const char* bumpImageProperty = imageRow("bumpmap_Bitmap").name;
constexpr const PropertyRow& depthRow = imageRow("bumpmap_Depth");
constexpr const PropertyRow& normalScaleRow = imageRow("bumpmap_NormalScale");
static_assert(imageRow(assets::bitmapImageProperty).kind == PropertyKind::Uri);

/// A pair of numbers in the unit of the first; a document states one unit for both.
Measured<assets::Vector2> readPair(const TextureRequest& request, const PropertyRow& rowOfX,
                                   const PropertyRow& rowOfY)
{
    const assets::Property x = request.texture[rowOfX.name];
    const assets::Property y = request.texture[rowOfY.name];
    Measured<assets::Vector2> pair;
    pair.value = {x.number(rowOfX.fallback[0]), y.number(rowOfY.fallback[0])};
    pair.unit = x.unit(base::distanceUnitType, request.textureLog);
    if (y.hasValue() && y.hasUnit() && base::unitForCode(y.unitCode()) != pair.unit)
        request.textureLog.warning(DiagnosticCode::UnitIgnored, rowOfY.name,
                                   std::string("its unit is not that of ") + rowOfX.name +
                                       ", which holds for both");
    return pair;
}

/// The colour space that the "Lyrex" family gives an image.
std::string imageColorSpace(const TextureRequest& request, const char* imageProperty)
{
    return assets::inputColorSpace(
        {request.texture, request.material, imageProperty, true, request.type}, request.textureLog);
}

/// A node that reads the image of a property where the asset places it.
std::optional<Texture> readPlacedImage(const TextureRequest& request, const char* category,
                                       const char* imageProperty)
{
    Texture texture{category, readImage(request, imageProperty), assets::srgbTexture};
    if (texture.file.empty())
        return std::nullopt;
    texture.placement = readPlacement(request);
    return texture;
}

/// Height and normal maps: a placed image and a strength.
template <class ReadStrength>
Reading readMap(const TextureRequest& request, const char* category, const char* imageProperty,
                ReadStrength readStrength)
{
    std::optional<Texture> texture = readPlacedImage(request, category, imageProperty);
    if (!texture)
        return std::nullopt;
    texture->strength = readStrength(*texture);
    // Assets carry the strengths of both kinds; that of the other kind is switched off, not lost.
    for (const PropertyRow* strength : {&depthRow, &normalScaleRow})
        request.texture[strength->name];
    return TextureReading{std::move(*texture)};
}

} // namespace

std::string readImage(const TextureRequest& request, const char* property)
{
    const assets::Property reference = request.texture[property];
    return usableImage(reference.hasValue() ? reference.path() : std::string(), property,
                       request.textureLog);
}

std::string usableImage(const std::string& image, const char* property, const Log& log)
{
    if (image.empty())
    {
        log.warning(DiagnosticCode::TexturePathEmpty, property, "the texture names no image");
        return {};
    }
    if (const std::string shown = base::xmlText(image); shown != image)
    {
        log.warning(DiagnosticCode::TextureNameRefused, property,
                    "a document cannot hold the image's name: " + shown);
        return {};
    }
    if (!isImageFile(image))
        log.warning(DiagnosticCode::TextureFileMissing, property,
                    "there is no such image file: " + image);
    return image;
}

bool isImageFile(const std::string& image)
{
    const std::filesystem::path path = base::pathFromUtf8(image);
    return path.is_absolute() && base::isFile(path);
}

Measured<float> readMeasured(const TextureRequest& request, const PropertyRow& row,
                             const char* unitType)
{
    const assets::Property number = request.texture[row.name];
    return {number.number(row.fallback[0]), number.unit(unitType, request.textureLog)};
}

Measured<assets::Vector2> readRealWorldScale(const TextureRequest& request)
{
    return readPair(request, imageRow("texture_RealWorldScaleX"),
                    imageRow("texture_RealWorldScaleY"));
}

Placement readPlacement(const TextureRequest& request)
{
    const auto bare = [&](const PropertyRow& row)
    {
        const assets::Property number = request.texture[row.name];
        return number.hasValue() ? number.bareNumber(request.textureLog) : row.fallback[0];
    };
    const auto isSet = [&](const PropertyRow& row)
    { return request.texture[row.name].boolean(row.fallback[0] != 0.0f); };
    Placement placement;
    placement.realWorldOffset = readPair(request, imageRow("texture_RealWorldOffsetX"),
                                         imageRow("texture_RealWorldOffsetY"));
    placement.realWorldScale = readRealWorldScale(request);
    placement.uvOffset = {bare(imageRow("texture_UOffset")), bare(imageRow("texture_VOffset"))};
    placement.uvScale = {bare(imageRow("texture_UScale")), bare(imageRow("texture_VScale"))};
    placement.repeatU = isSet(imageRow("texture_URepeat"));
    placement.repeatV = isSet(imageRow("texture_VRepeat"));
    placement.rotation = readMeasured(request, imageRow("texture_WAngle"), base::angleUnitType);
    return placement;
}

Tone readTone(const TextureRequest& request)
{
    constexpr const PropertyRow& amount = imageRow("unifiedbitmap_RGBAmount");
    constexpr const PropertyRow& invert = imageRow("unifiedbitmap_Invert");
    return {request.texture[amount.name].number(amount.fallback[0]),
            request.texture[invert.name].boolean(invert.fallback[0] != 0.0f)};
}

Reading readBitmap(const TextureRequest& request)
{
    std::optional<Texture> texture =
        readPlacedImage(request, "kvor:bitmap", assets::bitmapImageProperty);
    if (!texture)
        return std::nullopt;
    texture->tone = readTone(request);
    return TextureReading{std::move(*texture)};
}

Reading readLyrexBitmap(const TextureRequest& request)
{
    Reading bitmap = readBitmap(request);
    if (bitmap)
        bitmap->texture.colorSpace = imageColorSpace(request, assets::bitmapImageProperty);
    return bitmap;
}

Reading readHeightMap(const TextureRequest& request, const char* imageProperty,
                      const std::optional<float>& givenDepth)
{
    return readMap(request, "kvor:height_map", imageProperty,
                   [&](const Texture& texture) -> Strength
                   {
                       if (givenDepth)
                           return {"depth", {*givenDepth, texture.placement->realWorldScale.unit}};
                       return {"depth", readMeasured(request, depthRow, base::distanceUnitType)};
                   });
}

Reading readNormalMap(const TextureRequest& request, const char* imageProperty,
                      const std::optional<float>& givenScale)
{
    return readMap(request, "kvor:normal_map", imageProperty,
                   [&](const Texture&) -> Strength
                   {
                       if (givenScale)
                           return {"normal_scale", {*givenScale, {}}};
                       return {"normal_scale", readMeasured(request, normalScaleRow, "")};
                   });
}

Reading readLyrexMap(const TextureRequest& request)
{
    constexpr const char* typeProperty = imageRow("bumpmap_Type").name;
    const std::string type = request.texture[typeProperty].choice("");
    Reading map;
    if (type == "bumpmap_normal_map")
        map = readNormalMap(request, bumpImageProperty);
    else if (type.empty() || type == "bumpmap_height_map")
    {
        if (type.empty())
            request.textureLog.warning(DiagnosticCode::ValueAdjusted, typeProperty,
                                       "the bump map states no type; taken as a height map");
        map = readHeightMap(request, bumpImageProperty);
    }
    else
        request.textureLog.warning(DiagnosticCode::ChoiceUnknown, typeProperty,
                                   "\"" + type +
                                       "\" is no type of bump map that is known; it is left out");
    if (map)
        map->texture.colorSpace = imageColorSpace(request, bumpImageProperty);
    return map;
}

} // namespace vyr::MaterialTranslation::textures

namespace vyr::MaterialTranslation
{

const std::vector<SchemaRow>& imageTextures()
{
    using namespace textures;
    static const std::vector<SchemaRow> schemas = {
        {assets::bitmapSchema, "an image, for colours and numbers, or as heights", bitmapRows,
         std::size(bitmapRows)},
        {assets::bumpMapSchema, "a height or normal map, for the normals of Lyrex materials",
         bumpMapRows, std::size(bumpMapRows)},
    };
    return schemas;
}

const SchemaRow& texturePlacement()
{
    using namespace textures;
    static const SchemaRow rows = {"", "how a texture lies on a surface", placementRows,
                                   std::size(placementRows)};
    return rows;
}

} // namespace vyr::MaterialTranslation
