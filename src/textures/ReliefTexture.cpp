#include "textures/ReliefTexture.h"
#include "textures/MaterialFolder.h"

#include <algorithm>
#include <limits>
#include <vector>

#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"
#include "assets/Units.h"
#include "baking/BakedFiles.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "graph/Inputs.h"
#include "graph/Nodes.h"
#include "textures/ImageReference.h"

namespace vyr::MaterialTranslation::textures
{

namespace mx = MaterialX;

namespace
{

/// Warns when a property says something that a bake does not take up.
template <class Value>
void warnUnlessDefault(const char* property, const Value& value, const Value& standard,
                       const Log& log)
{
    if (value != standard)
        log.warning(DiagnosticCode::ValueAdjusted, property,
                    "has no effect on a bitmap that is used as bump");
}

/// Takes over what a bake reported.
/// @return whether there is a baked file.
bool accept(const baking::BakedFile& baked, ReliefBuild& build)
{
    for (const std::string& warning : baked.result.warnings)
        build.log.warning(DiagnosticCode::ValueAdjusted, build.name, warning);
    if (!baked.result.success)
        build.log.warning(DiagnosticCode::BakeFailed, build.name,
                          "the surface stays without relief: " + baked.result.message);
    else
        build.baked = baked.path;
    return baked.result.success;
}

/// The images that the material's other textures read: a user's file may be where a bake would go.
std::vector<std::filesystem::path> imagesOf(const mx::NodeGraphPtr& graph)
{
    std::vector<std::filesystem::path> images;
    for (const mx::NodePtr& node : graph->getNodes())
        for (const mx::InputPtr& input : node->getInputs())
            if (input->getType() == mx::FILENAME_TYPE_STRING)
                images.push_back(base::pathFromUtf8(input->getValueString()));
    return images;
}

/// The material's folder during a bake: made when it is missing, gone again when nothing came of the
/// bake.
class MaterialFolder
{
  public:
    explicit MaterialFolder(const ReliefBuild& build)
        : _build(build), _isNew(textures::makeMaterialFolder(build.folder))
    {
    }
    MaterialFolder(const MaterialFolder&) = delete;
    MaterialFolder& operator=(const MaterialFolder&) = delete;
    ~MaterialFolder()
    {
        std::error_code ignored;
        if (_isNew && _build.baked.empty())
            std::filesystem::remove(_build.folder, ignored); // refuses when something is in it
    }

  private:
    const ReliefBuild& _build;
    bool _isNew;
};

/// The node that reads a baked normal map: linear data.
mx::NodePtr addNormalMapNode(const ReliefBuild& build)
{
    const mx::NodePtr node = graph::addNode(build.graph, "kvor:normal_map", build.name, build.type);
    graph::addNodeOutput(build.graph, node);
    const std::u8string file = build.baked.generic_u8string();
    graph::addFileInput(node, {file.begin(), file.end()}, assets::linearRec709);
    return node;
}

} // namespace

BumpTexture readBumpTexture(const assets::AssetView& bitmap, const Log& log)
{
    BumpTexture bump;
    bump.image = readImageReference(bitmap, assets::bitmapImageProperty, log);
    if (bump.image.empty())
        return bump;
    bump.placement = readTexturePlacement(bitmap, log);
    constexpr const char* amount = "unifiedbitmap_RGBAmount";
    constexpr const char* invert = "unifiedbitmap_Invert";
    warnUnlessDefault(amount, assets::GetFloatOr(bitmap, amount, 1.0f), 1.0f, log);
    warnUnlessDefault(invert, assets::GetBooleanOr(bitmap, invert, false), false, log);
    return bump;
}

NoiseTexture readNoiseTexture(const assets::AssetView& asset, const Log& log)
{
    NoiseTexture texture;
    NoiseBakeOptions& noise = texture.noise;
    noise.type = assets::GetFirstChoiceOr(asset, "noise_Type", "noise_regular");
    noise.color1 = assets::GetColor3Or(asset, "noise_Color1", {0.0f, 0.0f, 0.0f});
    noise.color2 = assets::GetColor3Or(asset, "noise_Color2", {1.0f, 1.0f, 1.0f});
    noise.size = assets::GetFloatOr(asset, "noise_Size", 1.0f);
    noise.thresholdLow = assets::GetFloatOr(asset, "noise_ThresholdLow", 0.0f);
    noise.thresholdHigh = assets::GetFloatOr(asset, "noise_ThresholdHigh", 1.0f);
    noise.levels = assets::GetFloatOr(asset, "noise_Levels", 1.0f);
    noise.phase = assets::GetFloatOr(asset, "noise_Phase", 0.0f);
    texture.realWorldScale.value = {1.0f, 1.0f};
    if (assets::HasPropertyValue(asset, "texture_RealWorldScaleX"))
        texture.realWorldScale = readRealWorldScale(asset, log);
    return texture;
}

mx::OutputPtr addBakedNormalMap(const BumpTexture& bump, ReliefBuild& build)
{
    if (bump.image.empty())
        return nullptr;
    if (!isImageFile(base::pathFromUtf8(bump.image)))
    {
        build.log.warning(DiagnosticCode::BakeFailed, build.name,
                          "the surface stays without relief, whose image is missing");
        return nullptr;
    }
    const MaterialFolder folder(build);
    baking::BumpImage image;
    image.image = base::pathFromUtf8(bump.image);
    image.folder = build.folder;
    image.kept = imagesOf(build.graph);
    // The bake carries the offsets under these names and does not use them.
    image.realWorldScaleX = bump.placement.realWorldOffset.value[0];
    image.realWorldScaleY = bump.placement.realWorldOffset.value[1];
    image.limits = bakeSettings().limits;
    image.threads = bakeSettings().threads;
    if (!accept(baking::bakeBumpImage(image), build))
        return nullptr;

    const mx::NodePtr node = addNormalMapNode(build);
    addPlacementInputs(node, bump.placement);
    graph::addTypedInput(node, "normal_scale", build.bumpAmount);
    return build.graph->getOutput(graph::outputName(build.name));
}

mx::OutputPtr addNoiseNormalMap(const NoiseTexture& noise, ReliefBuild& build)
{
    constexpr std::uint64_t largest = std::numeric_limits<int>::max();
    const MaterialFolder folder(build);
    baking::NoiseBump bump;
    bump.noise = noise.noise;
    bump.noise.width = static_cast<int>(std::min(build.imageSize, largest));
    bump.noise.height = bump.noise.width;
    bump.noise.limits = bakeSettings().limits;
    bump.noise.threads = bakeSettings().threads;
    bump.bumpAmount = build.bumpAmount;
    bump.folder = build.folder;
    bump.kept = imagesOf(build.graph);
    bump.nodeName = build.name;
    if (!accept(baking::bakeNoiseBump(bump), build))
        return nullptr;

    const mx::NodePtr node = addNormalMapNode(build);
    addMeasuredInput(node, "realworld_scale", noise.realWorldScale);
    return build.graph->getOutput(graph::outputName(build.name));
}

} // namespace vyr::MaterialTranslation::textures
