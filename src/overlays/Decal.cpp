#include <algorithm>

#include "graph/Nodes.h"
#include "overlays/Overlay.h"

namespace vyr::MaterialTranslation::overlays
{

namespace mx = MaterialX;

namespace
{

/// Stored values this near to the key colour, as a distance in the cube of colours, show nothing. One step
/// of 255 in every channel is still the key, as compression leaves it; four steps in one channel are not.
constexpr float keyThreshold = 0.01f;

/// What a decal says.
struct DecalReading
{
    TextureInfo image;
    /// The colour that shows nothing, as images store it; without one the image's alpha counts.
    std::optional<mx::Color3> key;
};

bool isKeyed(std::int32_t kind)
{
    return kind == 2 || kind == 3;
}

/// One channel of the key colour, from 0 to 1.
float readKeyChannel(std::int32_t value, const char* field, const Log& log)
{
    constexpr std::int32_t largest = 255;
    const std::int32_t clamped = std::clamp(value, 0, largest);
    if (clamped != value)
        log.warning(DiagnosticCode::ValueAdjusted, field,
                    std::to_string(value) + " is no value of a channel; " +
                        std::to_string(clamped) + " is used");
    return static_cast<float>(clamped) / static_cast<float>(largest);
}

std::optional<DecalReading> readDecal(const DecalInfo& decal, const Log& log)
{
    std::optional<TextureInfo> image = readTexture(decal.texture, "texture", log);
    if (!image)
    {
        log.warning(DiagnosticCode::NothingToBuild, "", "the decal has no image");
        return std::nullopt;
    }
    DecalReading reading{std::move(*image), {}};
    if (isKeyed(decal.kind))
        reading.key = mx::Color3(readKeyChannel(decal.value0, "value0", log),
                                 readKeyChannel(decal.value1, "value1", log),
                                 readKeyChannel(decal.value2, "value2", log));
    return reading;
}

/// White but for the key colour. The stored values are compared: in linear ones no threshold suits dark and
/// bright keys.
mx::NodePtr addKeyOpacity(const mx::GraphElementPtr& graph, const TextureInfo& texture,
                          const mx::Color3& key)
{
    const std::string& color = graph::typeStringOf<mx::Color3>();
    const std::string& vector = graph::typeStringOf<mx::Vector3>();
    const mx::NodePtr image = graph::addPlacedTextureNode(graph, "stored_image", texture, color);
    readAsStored(image->getInput("file"));
    const mx::NodePtr difference =
        graph::addBinaryWith(graph, "subtract", "difference_image_with_chromekey", image, key);
    // As the image beside it, or it would have the document's colour space.
    readAsStored(difference->getInput("in2"));
    const mx::NodePtr steps =
        graph::addUnary(graph, "convert", "convert_color3_to_vector3", difference, vector);
    const mx::NodePtr distance = graph::addUnary(graph, "magnitude", "magnitude_vector3", steps,
                                                 graph::typeStringOf<float>());
    return graph::addComparison(graph, "ifgreater", "convert_to_opacity_white_black", distance,
                                keyThreshold, mx::Color3(1.0f), mx::Color3(0.0f));
}

mx::NodePtr addAlphaOpacity(const mx::GraphElementPtr& graph, const TextureInfo& texture)
{
    const mx::NodePtr image = graph::addPlacedTextureNode(graph, "stored_image", texture,
                                                          graph::typeStringOf<mx::Color4>());
    readAsStored(image->getInput("file"));
    return addGrey(graph, "create_image_with_3alphas", addAlpha(graph, image));
}

/// White in the image's rectangle, black beyond, where the image only continues its edge.
mx::NodePtr addRectangle(const mx::GraphElementPtr& graph, const TextureInfo& texture)
{
    const mx::NodePtr place = graph::addPlacement(graph, "place_in_image", texture);
    const mx::NodePtr nearest =
        graph::addUnary(graph, "clamp", "nearest_in_image", place, place->getType());
    graph::addTypedInput(nearest, "low", 0.0f);
    graph::addTypedInput(nearest, "high", 1.0f);
    const mx::NodePtr way = graph::addBinary(graph, "subtract", "way_to_image", place, nearest);
    const mx::NodePtr distance =
        graph::addUnary(graph, "magnitude", "distance_to_image", way, graph::typeStringOf<float>());
    return graph::addComparison(graph, "ifgreater", "inside_image", distance, 0.0f,
                                mx::Color3(0.0f), mx::Color3(1.0f));
}

} // namespace

mx::DocumentPtr buildDecal(const DecalInfo& decal, const OverlayRequest& request)
{
    const std::optional<DecalReading> reading = readDecal(decal, request.log);
    if (!reading)
        return nullptr;
    std::optional<OverlayMaterial> material = OverlayMaterial::make(request);
    if (!material)
        return nullptr;
    const mx::NodeGraphPtr& graph = material->graph();
    material->drive("base_color", graph::addPlacedTextureNode(graph, "image", reading->image,
                                                              graph::typeStringOf<mx::Color3>()));
    const mx::NodePtr shown = reading->key ? addKeyOpacity(graph, reading->image, *reading->key)
                                           : addAlphaOpacity(graph, reading->image);
    material->drive("opacity", graph::addBinary(graph, "multiply", "opacity", shown,
                                                addRectangle(graph, reading->image)));
    return material->finish({});
}

} // namespace vyr::MaterialTranslation::overlays
