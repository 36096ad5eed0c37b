#include "textures/MapTexture.h"

#include "assets/PropertyReaders.h"
#include "assets/Units.h"
#include "graph/Inputs.h"
#include "graph/Nodes.h"
#include "textures/ImageReference.h"

namespace vyr::MaterialTranslation::textures
{

namespace mx = MaterialX;

namespace
{

constexpr const char* depthProperty = "bumpmap_Depth";
constexpr const char* normalScaleProperty = "bumpmap_NormalScale";

MapTexture readMap(MapTexture::Kind kind, const assets::AssetView& texture,
                   const char* imageProperty, const Log& log)
{
    MapTexture map;
    map.kind = kind;
    map.image = readImageReference(texture, imageProperty, log);
    if (map.image.empty())
        return map;
    map.colorSpace = assets::srgbTexture;
    map.placement = readTexturePlacement(texture, log);
    // Assets carry the strengths of both kinds; that of the other kind is switched off, not lost.
    for (const char* strength : {depthProperty, normalScaleProperty})
        assets::FindProperty(texture, strength);
    return map;
}

} // namespace

MapTexture readHeightMapTexture(const assets::AssetView& texture, const char* imageProperty,
                                const std::optional<float>& givenDepth, const Log& log)
{
    MapTexture map = readMap(MapTexture::Kind::Height, texture, imageProperty, log);
    if (givenDepth)
        map.strength = {*givenDepth, map.placement.realWorldScale.unit};
    else if (!map.image.empty())
        map.strength = readMeasured(texture, depthProperty, 0.0f, assets::distanceUnitType, log);
    return map;
}

MapTexture readNormalMapTexture(const assets::AssetView& texture, const char* imageProperty,
                                const std::optional<float>& givenScale, const Log& log)
{
    MapTexture map = readMap(MapTexture::Kind::Normal, texture, imageProperty, log);
    if (givenScale)
        map.strength = {*givenScale, {}};
    else if (!map.image.empty())
        map.strength = readMeasured(texture, normalScaleProperty, 1.0f, "", log);
    return map;
}

mx::OutputPtr addMapTexture(const MapTexture& map, const mx::NodeGraphPtr& graph,
                            const std::string& name, const std::string& type)
{
    if (map.image.empty())
        return nullptr;
    const bool height = map.kind == MapTexture::Kind::Height;
    const mx::NodePtr node =
        graph::addNode(graph, height ? "kvor:height_map" : "kvor:normal_map", name, type);
    mx::OutputPtr output = graph::addNodeOutput(graph, node);
    graph::addFileInput(node, map.image, map.colorSpace);
    addPlacementInputs(node, map.placement);
    addMeasuredInput(node, height ? "depth" : "normal_scale", map.strength);
    return output;
}

} // namespace vyr::MaterialTranslation::textures
