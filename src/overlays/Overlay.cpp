#include "overlays/Overlay.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "assets/ColorSpaces.h"
#include "graph/Nodes.h"
#include "textures/Kinds.h"

namespace vyr::MaterialTranslation::overlays
{

namespace mx = MaterialX;

namespace
{

/// MaterialX's name for values that are no colours.
constexpr const char* noColorSpace = "none";

template <std::size_t count>
void makeFinite(std::array<float, count>& numbers, float fallback, bool& changed)
{
    for (float& number : numbers)
        if (!std::isfinite(number))
        {
            number = fallback;
            changed = true;
        }
}

} // namespace

std::optional<TextureInfo> readTexture(const TextureInfo& texture, const char* field,
                                       const Log& log)
{
    TextureInfo read = texture;
    read.path = textures::usableImage(texture.path.str(), field, log);
    if (read.path.empty())
        return std::nullopt;
    bool changed = false;
    makeFinite(read.realWorldOffset, 0.0f, changed);
    makeFinite(read.realWorldScale, 1.0f, changed);
    makeFinite(read.uvOffset, 0.0f, changed);
    makeFinite(read.uvScale, 1.0f, changed);
    std::array<float, 1> rotation{read.rotation};
    makeFinite(rotation, 0.0f, changed);
    read.rotation = rotation[0];
    if (changed)
        log.warning(DiagnosticCode::ValueAdjusted, field,
                    "numbers of the placement are not finite; their defaults are used");
    return read;
}

bool areFinite(const std::array<float, 4>& numbers)
{
    return std::ranges::all_of(numbers, [](float number) { return std::isfinite(number); });
}

std::optional<OverlayMaterial> OverlayMaterial::make(const OverlayRequest& request)
{
    const mx::DocumentPtr document = mx::createDocument();
    const materials::MaterialPlace place{document, request.name, request.addLook, request.log};
    if (!materials::Skeleton::isPossible(place, materials::standardSurfaceGraphSuffix))
        return std::nullopt;
    return OverlayMaterial(document,
                           {place, "standard_surface", materials::standardSurfaceGraphSuffix});
}

OverlayMaterial::OverlayMaterial(mx::DocumentPtr document, materials::Skeleton skeleton)
    : _document(std::move(document)), _skeleton(std::move(skeleton)), _graph(_skeleton.graph())
{
}

void OverlayMaterial::drive(const char* input, const mx::NodePtr& node)
{
    _drivers[input] = graph::addNodeOutput(_graph, node);
}

mx::DocumentPtr OverlayMaterial::finish(const materials::StandardSurfaceParams& params)
{
    const auto driver = [this](const materials::StandardSurfaceInput& row)
    {
        const auto output = _drivers.find(row.name);
        return output == _drivers.end() ? nullptr : output->second;
    };
    materials::writeStandardSurface(_skeleton.shader(), params, assets::linearRec709, driver);
    return _document;
}

void readAsStored(const mx::InputPtr& input)
{
    input->setColorSpace(noColorSpace);
}

mx::NodePtr addAlpha(const mx::GraphElementPtr& graph, const mx::NodePtr& image)
{
    constexpr int alphaChannel = 3;
    return graph::addExtract(graph, "extract_alpha", image, alphaChannel);
}

mx::NodePtr addGrey(const mx::GraphElementPtr& graph, const std::string& name,
                    const mx::NodePtr& number)
{
    mx::NodePtr node = graph->addNode("combine3", name, graph::typeStringOf<mx::Color3>());
    for (const char* channel : {"in1", "in2", "in3"})
        graph::addSourceInput(node, channel, number, number->getType());
    return node;
}

} // namespace vyr::MaterialTranslation::overlays
