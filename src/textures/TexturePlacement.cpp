#include "textures/TexturePlacement.h"

#include "graph/Inputs.h"
#include "graph/Placement.h"

namespace vyr::MaterialTranslation::textures
{

namespace mx = MaterialX;

namespace
{

mx::Vector2 toVector(const assets::Vector2& value)
{
    return {value[0], value[1]};
}

/// The unit of a number that is there.
assets::Unit readUnit(const assets::AssetView& texture, const char* property, const char* unitType,
                      const Log& log)
{
    return assets::HasPropertyValue(texture, property)
               ? assets::readUnit(texture, property, unitType, log)
               : assets::Unit();
}

/// A pair of numbers in the unit of the first; a document states one unit for both.
Measured<assets::Vector2> readPair(const assets::AssetView& texture, const char* x, const char* y,
                                   float fallback, const Log& log)
{
    Measured<assets::Vector2> pair;
    pair.value = {assets::GetFloatOr(texture, x, fallback),
                  assets::GetFloatOr(texture, y, fallback)};
    pair.unit = readUnit(texture, x, assets::distanceUnitType, log);
    if (assets::HasPropertyValue(texture, y) && assets::HasPropertyUnit(texture, y) &&
        assets::UnitForCode(assets::GetPropertyUnit(texture, y)) != pair.unit)
        log.warning(DiagnosticCode::UnitIgnored, y,
                    std::string("its unit is not that of ") + x + ", which holds for both");
    return pair;
}

} // namespace

Measured<float> readMeasured(const assets::AssetView& texture, const char* property, float fallback,
                             const char* unitType, const Log& log)
{
    return {assets::GetFloatOr(texture, property, fallback),
            readUnit(texture, property, unitType, log)};
}

Measured<assets::Vector2> readRealWorldScale(const assets::AssetView& texture, const Log& log)
{
    return readPair(texture, "texture_RealWorldScaleX", "texture_RealWorldScaleY", 1.0f, log);
}

TexturePlacement readTexturePlacement(const assets::AssetView& texture, const Log& log)
{
    TexturePlacement placement;
    placement.realWorldOffset =
        readPair(texture, "texture_RealWorldOffsetX", "texture_RealWorldOffsetY", 0.0f, log);
    placement.realWorldScale = readRealWorldScale(texture, log);
    const auto plain = [&](const char* name, float fallback)
    { return assets::readUnitless(texture, name, fallback, log); };
    placement.uvOffset = {plain("texture_UOffset", 0.0f), plain("texture_VOffset", 0.0f)};
    placement.uvScale = {plain("texture_UScale", 1.0f), plain("texture_VScale", 1.0f)};
    placement.repeatU = assets::GetBooleanOr(texture, "texture_URepeat", false);
    placement.repeatV = assets::GetBooleanOr(texture, "texture_VRepeat", false);
    placement.rotation = readMeasured(texture, "texture_WAngle", 0.0f, assets::angleUnitType, log);
    return placement;
}

void addPlacementInputs(const mx::NodePtr& node, const TexturePlacement& placement)
{
    addMeasuredInput(node, "realworld_offset", placement.realWorldOffset);
    addMeasuredInput(node, "realworld_scale", placement.realWorldScale);
    graph::addTypedInput(node, "uv_offset", toVector(placement.uvOffset));
    graph::addTypedInput(node, "uv_scale", toVector(placement.uvScale));
    graph::setAddressModes(node, placement.repeatU, placement.repeatV);
    addMeasuredInput(node, "rotation_angle", placement.rotation);
}

mx::InputPtr addMeasuredInput(const mx::NodePtr& node, const char* name,
                              const Measured<assets::Vector2>& measured)
{
    mx::InputPtr input = graph::addTypedInput(node, name, toVector(measured.value));
    graph::setInputUnit(input, measured.unit);
    return input;
}

mx::InputPtr addMeasuredInput(const mx::NodePtr& node, const char* name,
                              const Measured<float>& measured)
{
    mx::InputPtr input = graph::addTypedInput(node, name, measured.value);
    graph::setInputUnit(input, measured.unit);
    return input;
}

} // namespace vyr::MaterialTranslation::textures
