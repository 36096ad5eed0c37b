#include "Overlays.h"

#include <memory>
#include <optional>
#include <variant>

namespace vyr::cli
{
namespace
{

using assetlib::OverlayTexture;
using MaterialTranslation::TextureInfo;

void addPath(std::vector<std::string>& paths, const std::optional<OverlayTexture>& texture)
{
    if (texture && !texture->path.empty())
        paths.push_back(texture->path);
}

TextureInfo toInfo(const OverlayTexture& texture)
{
    TextureInfo info;
    info.path = texture.path;
    info.realWorldOffset = texture.realWorldOffset;
    info.realWorldScale = texture.realWorldScale;
    info.unit = texture.unit;
    info.uvOffset = texture.uvOffset;
    info.uvScale = texture.uvScale;
    info.rotation = texture.rotation;
    return info;
}

std::shared_ptr<TextureInfo> toShared(const std::optional<OverlayTexture>& texture)
{
    return texture ? std::make_shared<TextureInfo>(toInfo(*texture)) : nullptr;
}

std::shared_ptr<std::array<float, 4>> toShared(const std::optional<std::array<float, 4>>& values)
{
    return values ? std::make_shared<std::array<float, 4>>(*values) : nullptr;
}

} // namespace

std::string typeName(const assetlib::Overlay& overlay)
{
    return std::holds_alternative<assetlib::Decal>(overlay.content) ? "decal" : "thread";
}

std::vector<std::string> texturePathsOf(const assetlib::Overlay& overlay)
{
    std::vector<std::string> paths;
    if (const auto* decal = std::get_if<assetlib::Decal>(&overlay.content))
        addPath(paths, decal->texture);
    if (const auto* thread = std::get_if<assetlib::Thread>(&overlay.content))
    {
        addPath(paths, thread->threadTexture);
        addPath(paths, thread->normalTexture);
    }
    return paths;
}

MaterialTranslation::DecalInfo toInfo(const assetlib::Decal& decal)
{
    MaterialTranslation::DecalInfo info;
    info.kind = decal.kind;
    info.texture = toInfo(decal.texture);
    info.value0 = decal.value0;
    info.value1 = decal.value1;
    info.value2 = decal.value2;
    return info;
}

MaterialTranslation::ThreadInfo toInfo(const assetlib::Thread& thread)
{
    MaterialTranslation::ThreadInfo info;
    info.threadTexture = toShared(thread.threadTexture);
    info.normalTexture = toShared(thread.normalTexture);
    info.flag = thread.flag;
    info.baseMaterialColor = toShared(thread.baseMaterialColor);
    info.startClippingPlane = toShared(thread.startClippingPlane);
    info.endClippingPlane = toShared(thread.endClippingPlane);
    return info;
}

} // namespace vyr::cli
