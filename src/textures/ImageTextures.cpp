#include "assets/Asset.h"
#include "assets/ColorSpaces.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "textures/Kinds.h"

namespace vyr::MaterialTranslation::textures
{

namespace
{

constexpr const char* bumpImageProperty = "bumpmap_Bitmap";

/// A pair of numbers in the unit of the first; a document states one unit for both.
Measured<assets::Vector2> readPair(const TextureRequest& request, const char* nameOfX,
                                   const char* nameOfY, float fallback)
{
    const assets::Property x = request.texture[nameOfX];
    const assets::Property y = request.texture[nameOfY];
    Measured<assets::Vector2> pair;
    pair.value = {x.number(fallback), y.number(fallback)};
    pair.unit = x.unit(base::distanceUnitType, request.textureLog);
    if (y.hasValue() && y.hasUnit() && base::unitForCode(y.unitCode()) != pair.unit)
        request.textureLog.warning(DiagnosticCode::UnitIgnored, nameOfY,
                                   std::string("its unit is not that of ") + nameOfX +
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
    for (const char* strength : {"bumpmap_Depth", "bumpmap_NormalScale"})
        request.texture[strength];
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

Measured<float> readMeasured(const TextureRequest& request, const char* property, float fallback,
                             const char* unitType)
{
    const assets::Property number = request.texture[property];
    return {number.number(fallback), number.unit(unitType, request.textureLog)};
}

Measured<assets::Vector2> readRealWorldScale(const TextureRequest& request)
{
    return readPair(request, "texture_RealWorldScaleX", "texture_RealWorldScaleY", 1.0f);
}

Placement readPlacement(const TextureRequest& request)
{
    const auto bare = [&](const char* name, float fallback)
    {
        const assets::Property number = request.texture[name];
        return number.hasValue() ? number.bareNumber(request.textureLog) : fallback;
    };
    Placement placement;
    placement.realWorldOffset =
        readPair(request, "texture_RealWorldOffsetX", "texture_RealWorldOffsetY", 0.0f);
    placement.realWorldScale = readRealWorldScale(request);
    placement.uvOffset = {bare("texture_UOffset", 0.0f), bare("texture_VOffset", 0.0f)};
    placement.uvScale = {bare("texture_UScale", 1.0f), bare("texture_VScale", 1.0f)};
    placement.repeatU = request.texture["texture_URepeat"].boolean(false);
    placement.repeatV = request.texture["texture_VRepeat"].boolean(false);
    placement.rotation = readMeasured(request, "texture_WAngle", 0.0f, base::angleUnitType);
    return placement;
}

Reading readBitmap(const TextureRequest& request)
{
    std::optional<Texture> texture =
        readPlacedImage(request, "kvor:bitmap", assets::bitmapImageProperty);
    if (!texture)
        return std::nullopt;
    texture->tone = {request.texture["unifiedbitmap_RGBAmount"].number(1.0f),
                     request.texture["unifiedbitmap_Invert"].boolean(false)};
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
    return readMap(
        request, "kvor:height_map", imageProperty,
        [&](const Texture& texture) -> Strength
        {
            if (givenDepth)
                return {"depth", {*givenDepth, texture.placement->realWorldScale.unit}};
            return {"depth", readMeasured(request, "bumpmap_Depth", 0.0f, base::distanceUnitType)};
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
                       return {"normal_scale",
                               readMeasured(request, "bumpmap_NormalScale", 1.0f, "")};
                   });
}

Reading readLyrexMap(const TextureRequest& request)
{
    constexpr const char* typeProperty = "bumpmap_Type";
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
