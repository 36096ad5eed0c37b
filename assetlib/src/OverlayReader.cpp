#include "OverlayReader.h"

#include <array>

#include "Fields.h"
#include "Units.h"
#include "Words.h"

namespace vyr::assetlib
{

namespace
{

/// Reads the textures of one overlay.
class TextureReader
{
  public:
    TextureReader(FileScope& file, std::string_view overlay) : _file(file), _overlay(overlay) {}

    std::optional<OverlayTexture> operator()(const JsonNode& node, const Place& place,
                                             Report& report) const
    {
        OverlayTexture texture;
        ObjectReader object(node, place, report);
        object.read("path", texture.path, [&](const JsonNode& path, const Place& at, Report&)
                    { return readPath(path, at, node.key()); });
        object.read("realWorldOffset", texture.realWorldOffset, readFloats<2>);
        object.read("realWorldScale", texture.realWorldScale, readFloats<2>);
        object.read("unit", texture.unit, readLengthUnit);
        object.read("uvOffset", texture.uvOffset, readFloats<2>);
        object.read("uvScale", texture.uvScale, readFloats<2>);
        object.read("rotation", texture.rotation, readFloat);
        object.reportUnknownKeys();
        return texture;
    }

  private:
    static std::optional<float> readFloat(const JsonNode& node, const Place& place, Report& report)
    {
        const auto number = readNumber(node, place, report);
        return number ? std::optional(static_cast<float>(*number)) : std::nullopt;
    }

    std::optional<std::string> readPath(const JsonNode& node, const Place& place,
                                        std::string_view key) const
    {
        const auto reference = readText(node, place, _file.report);
        if (!reference)
            return std::nullopt;
        const ImageFinder::Image& image = _file.images.find(std::string(*reference));
        if (!image.remark.empty())
            _file.report.warning(place, _overlay, key, image.remark);
        return image.path;
    }

    FileScope& _file;
    std::string_view _overlay;
};

Decal readDecal(ObjectReader& object, const TextureReader& readTexture)
{
    Decal decal;
    object.read("kind", decal.kind, readInteger);
    object.read("texture", decal.texture, readTexture);
    object.read("value0", decal.value0, readInteger);
    object.read("value1", decal.value1, readInteger);
    object.read("value2", decal.value2, readInteger);
    return decal;
}

Thread readThread(ObjectReader& object, const TextureReader& readTexture)
{
    Thread thread;
    object.read("threadTexture", thread.threadTexture, readTexture);
    object.read("normalTexture", thread.normalTexture, readTexture);
    object.read("flag", thread.flag, readBoolean);
    object.read("baseMaterialColor", thread.baseMaterialColor, readFloats<4>);
    object.read("startClippingPlane", thread.startClippingPlane, readFloats<4>);
    object.read("endClippingPlane", thread.endClippingPlane, readFloats<4>);
    return thread;
}

} // namespace

std::optional<Overlay> readOverlay(const JsonNode& node, const Place& place, FileScope& file)
{
    static constexpr std::array<std::string_view, 2> kinds = {"decal", "thread"};

    ObjectReader object(node, place, file.report);
    Overlay overlay;
    std::optional<std::string> type;
    object.readRequired("name", overlay.name, readText);
    object.readRequired("type", type, readText);
    const TextureReader readTexture(file, overlay.name);
    if (type == kinds[0])
        overlay.content = readDecal(object, readTexture);
    else if (type == kinds[1])
        overlay.content = readThread(object, readTexture);
    else
    {
        if (type)
            file.report.error(object.at("type"), "expected " + listed(kinds) + ", found " +
                                                     inQuotes(*type) + suggestion(*type, kinds));
        return std::nullopt; // its other keys depend on the type
    }
    object.reportUnknownKeys();
    overlay.file = file.report.file();
    overlay.pointer = place.pointer();
    return overlay;
}

} // namespace vyr::assetlib
