#include <array>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/Overlays.h>
#include <MaterialTranslation/ThreadInfo.h>

#include "base/Paths.h"
#include "batch/Documents.h"

namespace vyr::batch
{
namespace
{

namespace mt = MaterialTranslation;

// The converter's records of what a file asked for.

mt::TextureInfo toInfo(const assetlib::OverlayTexture& texture)
{
    mt::TextureInfo info;
    info.path = texture.path;
    info.realWorldOffset = texture.realWorldOffset;
    info.realWorldScale = texture.realWorldScale;
    info.unit = texture.unit;
    info.uvOffset = texture.uvOffset;
    info.uvScale = texture.uvScale;
    info.rotation = texture.rotation;
    return info;
}

std::shared_ptr<mt::TextureInfo> toShared(const std::optional<assetlib::OverlayTexture>& texture)
{
    return texture ? std::make_shared<mt::TextureInfo>(toInfo(*texture)) : nullptr;
}

std::shared_ptr<std::array<float, 4>> toShared(const std::optional<std::array<float, 4>>& values)
{
    return values ? std::make_shared<std::array<float, 4>>(*values) : nullptr;
}

mt::DecalInfo toInfo(const assetlib::Decal& decal)
{
    mt::DecalInfo info;
    info.kind = decal.kind;
    info.texture = toInfo(decal.texture);
    info.value0 = decal.value0;
    info.value1 = decal.value1;
    info.value2 = decal.value2;
    return info;
}

mt::ThreadInfo toInfo(const assetlib::Thread& thread)
{
    mt::ThreadInfo info;
    info.threadTexture = toShared(thread.threadTexture);
    info.normalTexture = toShared(thread.normalTexture);
    info.flag = thread.flag;
    info.baseMaterialColor = toShared(thread.baseMaterialColor);
    info.startClippingPlane = toShared(thread.startClippingPlane);
    info.endClippingPlane = toShared(thread.endClippingPlane);
    return info;
}

template <class Payload>
MaterialX::DocumentPtr build(const std::string& name, mt::ConversionType type, Payload payload,
                             const mt::ConverterOptions& options)
{
    mt::MaterialInfo info;
    info.name = name;
    info.type = type;
    info.payload = &payload;
    return mt::buildOverlay(info, options);
}

MaterialX::DocumentPtr build(const Task& task, const mt::ConverterOptions& options)
{
    const auto& content = std::get<const assetlib::Overlay*>(task.item)->content;
    if (const auto* decal = std::get_if<assetlib::Decal>(&content))
        return build(task.name, mt::ConversionType::Decal, toInfo(*decal), options);
    return build(task.name, mt::ConversionType::Thread, toInfo(std::get<assetlib::Thread>(content)),
                 options);
}

/// An overlay's document; null when there is none, and when it would be empty.
MaterialX::DocumentPtr translate(const Task& task, const mt::ConverterOptions& options,
                                 Outcome& outcome)
{
    MaterialX::DocumentPtr document;
    std::string reason = "there is nothing to build";
    try
    {
        document = build(task, options);
    }
    catch (const std::exception& error)
    {
        reason = error.what();
    }
    addDiagnostics(outcome, document ? "" : reason);
    return document;
}

} // namespace

Translate overlayTranslation(const Settings& settings, const OutputFolder& folder)
{
    mt::ConverterOptions options = settings.options;
    options.outputDirectory = base::utf8FromPath(folder.absolute);
    mt::BakeSettings bakes;
    bakes.anew = settings.anew;
    return [options, bakes](std::size_t /*worker*/, const Task& task, Outcome& outcome)
    {
        mt::setBakeSettings(bakes);
        return translate(task, options, outcome);
    };
}

} // namespace vyr::batch
