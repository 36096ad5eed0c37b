#include "textures/BitmapTexture.h"

#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"
#include "assets/Units.h"
#include "graph/Inputs.h"
#include "graph/Nodes.h"
#include "textures/ImageReference.h"

namespace vyr::MaterialTranslation::textures
{

namespace mx = MaterialX;

BitmapTexture readBitmapTexture(const assets::AssetView& bitmap, const Log& log)
{
    BitmapTexture texture;
    texture.image = readImageReference(bitmap, assets::bitmapImageProperty, log);
    if (texture.image.empty())
        return texture;
    texture.colorSpace = assets::srgbTexture;
    texture.placement = readTexturePlacement(bitmap, log);
    texture.amount = assets::GetFloatOr(bitmap, "unifiedbitmap_RGBAmount", 1.0f);
    texture.invert = assets::GetBooleanOr(bitmap, "unifiedbitmap_Invert", false);
    return texture;
}

mx::OutputPtr addBitmapTexture(const BitmapTexture& bitmap, const mx::NodeGraphPtr& graph,
                               const std::string& name, const std::string& type)
{
    if (bitmap.image.empty())
        return nullptr;
    const mx::NodePtr node = graph::addNode(graph, "kvor:bitmap", name, type);
    mx::OutputPtr output = graph::addNodeOutput(graph, node);
    graph::addFileInput(node, bitmap.image, bitmap.colorSpace);
    addPlacementInputs(node, bitmap.placement);
    graph::addTypedInput(node, "rgbamount", bitmap.amount);
    graph::addTypedInput(node, "invert", bitmap.invert);
    return output;
}

} // namespace vyr::MaterialTranslation::textures
