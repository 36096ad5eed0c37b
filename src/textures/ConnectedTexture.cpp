#include "textures/ConnectedTexture.h"

#include <algorithm>
#include <iterator>

#include "assets/PropertyError.h"
#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"
#include "core/OutputFolder.h"

namespace vyr::MaterialTranslation::textures
{

namespace mx = MaterialX;

namespace
{

/// The first asset connected to the property; a warning when there are more.
assets::AssetHandle takeConnection(const assets::AssetView& material, const char* property,
                                   const core::Log& log)
{
    const std::size_t count = assets::GetConnectionCount(material, property);
    assets::dismissConnection(material, property);
    if (count > 1)
        log.warning(DiagnosticCode::ConnectionsIgnored, property,
                    "only the first of " + std::to_string(count) + " connected assets is used");
    return assets::GetConnectedAsset(material, property).second;
}

using Content = std::optional<decltype(ConnectedTexture::content)>;

/// A texture that names an image, or nothing when it does not.
template <class Texture> Content unlessEmpty(Texture texture)
{
    return texture.image.empty() ? Content() : Content(std::move(texture));
}

Content readBitmap(const assets::AssetView& texture, const core::Log& log)
{
    return unlessEmpty(readBitmapTexture(texture, log));
}

Content readBump(const assets::AssetView& texture, const core::Log& log)
{
    return unlessEmpty(readBumpTexture(texture, log));
}

Content readNoise(const assets::AssetView& texture, const core::Log& log)
{
    return readNoiseTexture(texture, log);
}

struct ReaderRow
{
    TextureRole role;
    const char* schema;
    Content (*read)(const assets::AssetView&, const core::Log&);
};

constexpr ReaderRow readers[] = {
    {TextureRole::Value, assets::bitmapSchema, readBitmap},
    {TextureRole::Relief, assets::bitmapSchema, readBump},
    {TextureRole::Relief, assets::noiseSchema, readNoise},
};

const ReaderRow* findReader(TextureRole role, const std::string& schema)
{
    const auto* row =
        std::find_if(std::begin(readers), std::end(readers), [&](const ReaderRow& r)
                     { return r.role == role && r.schema == schema; });
    return row == std::end(readers) ? nullptr : row;
}

void warnNotTranslated(const char* property, TextureRole role, const std::string& schema,
                       const core::Log& log)
{
    log.warning(DiagnosticCode::TextureNotTranslated, property,
                "a texture of schema \"" + schema + "\" cannot be translated here; " +
                    (role == TextureRole::Value ? "the plain value is used"
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
            core::materialFolder(build.options.outputDirectory.str(), build.material),
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

std::optional<ConnectedTexture> readConnectedTexture(const assets::AssetView& material,
                                                     const char* property, TextureRole role,
                                                     const core::Log& log)
{
    const assets::AssetHandle asset = takeConnection(material, property, log);
    if (!asset)
        return std::nullopt;
    const std::string schema = assets::GetAssetSchemaName(*asset);
    const ReaderRow* reader = findReader(role, schema);
    if (!reader)
    {
        warnNotTranslated(property, role, schema, log);
        return std::nullopt;
    }
    try
    {
        assets::PropertyUse use;
        const assets::AssetView view(*asset, &use);
        Content content = reader->read(view, log.below(property));
        if (!content)
            return std::nullopt;
        assets::reportLeftProperties(view, {}, log.below(property));
        return ConnectedTexture{property, std::move(*content)};
    }
    catch (const assets::PropertyError& error)
    {
        throw error.below(property);
    }
}

mx::OutputPtr addConnectedTexture(const ConnectedTexture& texture, const std::string& type,
                                  const TextureBuild& build)
{
    return std::visit(Adder{texture, type, build}, texture.content);
}

} // namespace vyr::MaterialTranslation::textures
