#include "textures/ConnectedTexture.h"
#include "textures/MaterialFolder.h"

#include <algorithm>
#include <iterator>

#include "assets/InputColorSpace.h"
#include "assets/PropertyError.h"
#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"
#include "base/Paths.h"

namespace vyr::MaterialTranslation::textures
{

namespace mx = MaterialX;

namespace
{

constexpr const char* bumpImageProperty = "bumpmap_Bitmap";

/// The first asset connected to the property; a warning when there are more.
assets::AssetHandle takeConnection(const TexturedProperty& property)
{
    const std::size_t count = assets::GetConnectionCount(property.material, property.name);
    assets::dismissConnection(property.material, property.name);
    if (count > 1)
        property.log.warning(DiagnosticCode::ConnectionsIgnored, property.name,
                             "only the first of " + std::to_string(count) +
                                 " connected assets is used");
    return assets::GetConnectedAsset(property.material, property.name).second;
}

using Content = std::optional<decltype(ConnectedTexture::content)>;

/// A texture that names an image, or nothing when it does not.
template <class Texture> Content unlessEmpty(Texture texture)
{
    return texture.image.empty() ? Content() : Content(std::move(texture));
}

Content readBitmap(const assets::AssetView& texture, const TexturedProperty& /*property*/,
                   const Log& log)
{
    return unlessEmpty(readBitmapTexture(texture, log));
}

Content readBump(const assets::AssetView& texture, const TexturedProperty& /*property*/,
                 const Log& log)
{
    return unlessEmpty(readBumpTexture(texture, log));
}

Content readNoise(const assets::AssetView& texture, const TexturedProperty& /*property*/,
                  const Log& log)
{
    return readNoiseTexture(texture, log);
}

/// The colour space that the "Lyrex" family gives an image.
std::string imageColorSpace(const assets::AssetView& texture, const TexturedProperty& property,
                            const char* imageProperty)
{
    return assets::inputColorSpace(
        {texture, property.material, imageProperty, true, property.type});
}

Content readLyrexBitmap(const assets::AssetView& texture, const TexturedProperty& property,
                        const Log& log)
{
    BitmapTexture bitmap = readBitmapTexture(texture, log);
    if (!bitmap.image.empty())
        bitmap.colorSpace = imageColorSpace(texture, property, assets::bitmapImageProperty);
    return unlessEmpty(std::move(bitmap));
}

MapTexture readBumpMap(const assets::AssetView& texture, const Log& log)
{
    constexpr const char* typeProperty = "bumpmap_Type";
    const std::string type = assets::GetFirstChoiceOr(texture, typeProperty, "");
    if (type == "bumpmap_normal_map")
        return readNormalMapTexture(texture, bumpImageProperty, std::nullopt, log);
    if (type.empty())
        log.warning(DiagnosticCode::ValueAdjusted, typeProperty,
                    "the bump map states no type; taken as a height map");
    else if (type != "bumpmap_height_map")
    {
        log.warning(DiagnosticCode::ChoiceUnknown, typeProperty,
                    "\"" + type + "\" is no type of bump map that is known; it is left out");
        return {};
    }
    return readHeightMapTexture(texture, bumpImageProperty, std::nullopt, log);
}

Content readLyrexMap(const assets::AssetView& texture, const TexturedProperty& property,
                     const Log& log)
{
    MapTexture map = readBumpMap(texture, log);
    if (!map.image.empty())
        map.colorSpace = imageColorSpace(texture, property, bumpImageProperty);
    return unlessEmpty(std::move(map));
}

struct ReaderRow
{
    TextureRole role;
    const char* schema;
    Content (*read)(const assets::AssetView&, const TexturedProperty&, const Log&);
};

constexpr ReaderRow readers[] = {
    {TextureRole::Value, assets::bitmapSchema, readBitmap},
    {TextureRole::Relief, assets::bitmapSchema, readBump},
    {TextureRole::Relief, assets::noiseSchema, readNoise},
    {TextureRole::Lyrex, assets::bitmapSchema, readLyrexBitmap},
    {TextureRole::Lyrex, assets::bumpMapSchema, readLyrexMap},
};

const ReaderRow* findReader(TextureRole role, const std::string& schema)
{
    const auto* row = std::ranges::find_if(readers, [&](const ReaderRow& r)
                                           { return r.role == role && r.schema == schema; });
    return row == std::end(readers) ? nullptr : row;
}

/// The "Lyrex" family refuses a texture that it does not know; elsewhere it is left out.
void rejectTexture(const TexturedProperty& property, const std::string& schema)
{
    if (property.role == TextureRole::Lyrex)
        throw assets::PropertyError(("Unhandled Schema " + schema).c_str(), property.name,
                                    DiagnosticCode::UnhandledTextureSchema);
    property.log.warning(DiagnosticCode::TextureNotTranslated, property.name,
                         "a texture of schema \"" + schema + "\" cannot be translated here; " +
                             (property.role == TextureRole::Value
                                  ? "the plain value is used"
                                  : "the surface stays without relief"));
}

/// Adds the node of each kind of texture.
struct Adder
{
    const ConnectedTexture& texture;
    const std::string& type;
    const TextureBuild& build;

    mx::OutputPtr operator()(const BitmapTexture& bitmap) const
    {
        return addBitmapTexture(bitmap, build.graph, texture.property, type);
    }
    mx::OutputPtr operator()(const MapTexture& map) const
    {
        return addMapTexture(map, build.graph, texture.property, type);
    }
    mx::OutputPtr operator()(const BumpTexture& bump) const
    {
        return addRelief([&](ReliefBuild& relief) { return addBakedNormalMap(bump, relief); });
    }
    mx::OutputPtr operator()(const NoiseTexture& noise) const
    {
        return addRelief([&](ReliefBuild& relief) { return addNoiseNormalMap(noise, relief); });
    }

  private:
    template <class Add> mx::OutputPtr addRelief(Add add) const
    {
        ReliefBuild relief{
            build.graph,
            texture.property,
            type,
            textures::materialFolder(build.options.outputDirectory.str(), build.material),
            build.bumpAmount,
            build.options.imageSize,
            build.log,
            {}};
        mx::OutputPtr output = add(relief);
        if (output)
            build.baked.push_back(relief.baked);
        return output;
    }
};

} // namespace

std::optional<ConnectedTexture> readConnectedTexture(const TexturedProperty& property)
{
    const assets::AssetHandle asset = takeConnection(property);
    if (!asset)
        return std::nullopt;
    const std::string schema = assets::GetAssetSchemaName(*asset);
    const ReaderRow* reader = findReader(property.role, schema);
    if (!reader)
    {
        rejectTexture(property, schema);
        return std::nullopt;
    }
    try
    {
        const Log log = property.log.below(property.name);
        assets::PropertyUse use;
        const assets::AssetView view(*asset, &use);
        Content content = reader->read(view, property, log);
        if (!content)
            return std::nullopt;
        assets::reportLeftProperties(view, {}, log);
        return ConnectedTexture{property.name, std::move(*content)};
    }
    catch (const assets::PropertyError& error)
    {
        throw error.below(property.name);
    }
}

mx::OutputPtr addConnectedTexture(const ConnectedTexture& texture, const std::string& type,
                                  const TextureBuild& build)
{
    return std::visit(Adder{texture, type, build}, texture.content);
}

} // namespace vyr::MaterialTranslation::textures
