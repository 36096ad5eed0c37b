#include <algorithm>
#include <limits>

#include "assets/Asset.h"
#include "assets/ColorSpaces.h"
#include "base/Paths.h"
#include "textures/Kinds.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::textures
{

namespace
{

/// Warns when a property says something that a bake does not take up.
template <class Value>
void warnUnlessDefault(const TextureRequest& request, const char* property, const Value& value,
                       const Value& standard)
{
    if (value != standard)
        request.textureLog.warning(DiagnosticCode::ValueAdjusted, property,
                                   "has no effect on a bitmap that is used as bump");
}

} // namespace

Texture bakedNormalMap()
{
    return {"kvor:normal_map", {}, assets::linearRec709};
}

/// A bitmap whose image is the height of the surface's relief.
Reading readBump(const TextureRequest& request)
{
    const std::string image = readImage(request, assets::bitmapImageProperty);
    if (image.empty())
        return std::nullopt;
    TextureReading reading{bakedNormalMap()};
    const Placement placement = readPlacement(request);
    reading.texture.placement = placement;
    reading.texture.strength = {"normal_scale", {request.bumpAmount, {}}};
    constexpr const char* amount = "unifiedbitmap_RGBAmount";
    constexpr const char* invert = "unifiedbitmap_Invert";
    warnUnlessDefault(request, amount, request.texture[amount].number(1.0f), 1.0f);
    warnUnlessDefault(request, invert, request.texture[invert].boolean(false), false);
    if (!isImageFile(image))
    {
        request.log.warning(DiagnosticCode::BakeFailed, request.property,
                            "the surface stays without relief, whose image is missing");
        return std::nullopt;
    }
    // The bake carries the offsets under these names and does not use them.
    bakes::BumpBake bump;
    bump.image = base::pathFromUtf8(image);
    bump.realWorldScaleX = placement.realWorldOffset.value[0];
    bump.realWorldScaleY = placement.realWorldOffset.value[1];
    reading.bake = {base::safeName(base::utf8FromPath(bump.image.stem()) + "_normalmap.png"), bump};
    return reading;
}

/// A noise whose values are the height of the surface's relief.
Reading readNoise(const TextureRequest& request)
{
    constexpr std::uint64_t largest = std::numeric_limits<int>::max();
    const assets::Asset& asset = request.texture;
    TextureReading reading{bakedNormalMap()};
    bakes::NoiseBumpBake bake;
    bake.bumpAmount = request.bumpAmount;
    NoiseBakeOptions& noise = bake.noise;
    noise.type = asset["noise_Type"].choice("noise_regular");
    noise.color1 = asset["noise_Color1"].color({0.0f, 0.0f, 0.0f});
    noise.color2 = asset["noise_Color2"].color({1.0f, 1.0f, 1.0f});
    noise.size = asset["noise_Size"].number(1.0f);
    noise.thresholdLow = asset["noise_ThresholdLow"].number(0.0f);
    noise.thresholdHigh = asset["noise_ThresholdHigh"].number(1.0f);
    noise.levels = asset["noise_Levels"].number(1.0f);
    noise.phase = asset["noise_Phase"].number(0.0f);
    noise.width = static_cast<int>(std::min(request.translation.options.imageSize, largest));
    noise.height = noise.width;
    reading.texture.realWorldScale = asset["texture_RealWorldScaleX"].hasValue()
                                         ? readRealWorldScale(request)
                                         : Measured<assets::Vector2>{{1.0f, 1.0f}, {}};
    reading.bake = {
        std::string(request.property) + "_" + std::to_string(noise.width) + "normal_map.png", bake};
    return reading;
}

} // namespace vyr::MaterialTranslation::textures
