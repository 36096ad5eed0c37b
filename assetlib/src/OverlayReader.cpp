#include "Loading.h"

#include <array>

#include "JsonReaders.h"
#include "base/Text.h"

namespace vyr::assetlib
{

namespace
{

std::optional<float> readFloat(JsonValue value, Report& report)
{
    const auto number = readNumber(value, report);
    return number ? std::optional(static_cast<float>(*number)) : std::nullopt;
}

/// One channel of a colour as images of 8 bits store it.
std::optional<std::int32_t> readChannel(JsonValue value, Report& report)
{
    return readWhole<std::int32_t>(value, report, 0, 255);
}

/// a, b, c, d of a x + b y + c z + d = 0.
std::optional<std::array<float, 4>> readPlane(JsonValue value, Report& report)
{
    const auto plane = readFloats<4>(value, report);
    if (!plane || (*plane)[0] != 0.0f || (*plane)[1] != 0.0f || (*plane)[2] != 0.0f)
        return plane;
    report.error(value, "expected a plane [a, b, c, d] whose a, b and c are not all 0");
    return std::nullopt;
}

/// Reads the textures of one overlay.
struct TextureReader
{
    FileContext& file;
    std::string_view overlay;

    std::optional<OverlayTexture> operator()(JsonValue member, Report& report) const
    {
        OverlayTexture texture;
        ObjectReader object(member, report);
        object.read("path", texture.path,
                    [&](JsonValue path, Report&) -> std::optional<std::string>
                    {
                        const auto* found = file.findImage(path, overlay, member.name());
                        return found ? std::optional(*found) : std::nullopt;
                    });
        object.read("realWorldOffset", texture.realWorldOffset, readFloats<2>);
        object.read("realWorldScale", texture.realWorldScale, readFloats<2>);
        object.read("unit", texture.unit, readLengthUnit);
        object.read("uvOffset", texture.uvOffset, readFloats<2>);
        object.read("uvScale", texture.uvScale, readFloats<2>);
        object.read("rotation", texture.rotation, readFloat);
        object.reportUnknownKeys();
        return texture;
    }
};

Decal readDecal(ObjectReader& object, const TextureReader& readTexture)
{
    Decal decal;
    object.read("kind", decal.kind, readInteger);
    object.read("texture", decal.texture, readTexture);
    object.read("value0", decal.value0, readChannel);
    object.read("value1", decal.value1, readChannel);
    object.read("value2", decal.value2, readChannel);
    return decal;
}

Thread readThread(ObjectReader& object, const TextureReader& readTexture)
{
    Thread thread;
    object.read("threadTexture", thread.threadTexture, readTexture);
    object.read("normalTexture", thread.normalTexture, readTexture);
    object.read("flag", thread.flag, readBoolean);
    object.read("baseMaterialColor", thread.baseMaterialColor, readFloats<4>);
    object.read("startClippingPlane", thread.startClippingPlane, readPlane);
    object.read("endClippingPlane", thread.endClippingPlane, readPlane);
    return thread;
}

} // namespace

std::optional<Overlay> readOverlay(JsonValue value, const std::string& pointer, FileContext& file)
{
    static constexpr std::array<std::string_view, 2> kinds = {"decal", "thread"};

    ObjectReader object(value, file.report);
    Overlay overlay;
    object.readRequired("name", overlay.name, readText);
    const auto member = object.require("type");
    const auto type = member ? readText(*member, file.report) : std::nullopt;
    const TextureReader readTexture{file, overlay.name};
    if (type == kinds[0])
        overlay.content = readDecal(object, readTexture);
    else if (type == kinds[1])
        overlay.content = readThread(object, readTexture);
    else
    {
        if (type)
            file.report.error(*member, "expected " + base::listed(kinds) + ", found " +
                                           base::inQuotes(*type) + base::suggestion(*type, kinds));
        return std::nullopt; // its other keys depend on the type
    }
    object.reportUnknownKeys();
    overlay.file = file.report.file();
    overlay.pointer = pointer;
    return overlay;
}

} // namespace vyr::assetlib
