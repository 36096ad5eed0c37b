#include "materials/GenericReader.h"

#include <algorithm>
#include <array>
#include <iostream>

#include "assets/Description.h"
#include "assets/PropertyReaders.h"
#include "assets/Schemas.h"
#include "assets/Units.h"
#include "materials/ColorPass.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

using Color = StandardSurfaceParams::Color;

namespace property
{
constexpr const char* colorByObject = "color_by_object";
constexpr const char* diffuse = "generic_diffuse";
constexpr const char* diffuseFade = "generic_diffuse_image_fade";
constexpr const char* reflectivity = "generic_reflectivity_at_0deg";
constexpr const char* isMetal = "generic_is_metal";
constexpr const char* glossiness = "generic_glossiness";
constexpr const char* transparency = "generic_transparency";
constexpr const char* transparencyFade = "generic_transparency_image_fade";
constexpr const char* translucency = "generic_refraction_translucency_weight";
constexpr const char* refractionIndex = "generic_refraction_index";
constexpr const char* cutout = "generic_cutout_opacity";
constexpr const char* luminance = "generic_self_illum_luminance";
constexpr const char* filterMap = "generic_self_illum_filter_map";
constexpr const char* bumpAmount = "generic_bump_amount";
constexpr const char* bumpMap = "generic_bump_map";

/// All of them, in the order in which the rules read them.
constexpr const char* all[] = {
    colorByObject, diffuse,      diffuseFade,      reflectivity, isMetal,
    glossiness,    transparency, transparencyFade, translucency, refractionIndex,
    cutout,        luminance,    filterMap,        bumpAmount,   bumpMap,
};
} // namespace property

/// Candela per square metre that count as an emission of 1.
constexpr float luminanceOfEmissionOne = 1000.0f;

/// The roughness mode without a curve.
constexpr std::int32_t linearRoughness = 2;

/// Applies the rules, one function each, to one material.
class GenericReader
{
  public:
    GenericReader(const assets::AssetView& view, const ConverterOptions& options, const Log& log)
        : _view(view), _options(options), _log(log)
    {
    }

    GenericMaterial read()
    {
        readDiffuse();
        readReflectivity();
        readGlossiness();
        readTransparency();
        readCutout();
        readSelfIllumination();
        readBump();
        assets::reportLeftProperties(_view, property::all, _log);
        return std::move(_material);
    }

  private:
    bool has(const char* name) const { return assets::HasProperty(_view, name); }
    float number(const char* name, float fallback) const
    {
        return assets::readUnitless(_view, name, fallback, _log);
    }

    /// Enters the texture connected to a property for a shader input.
    bool takeTexture(const char* name, const char* input,
                     textures::TextureRole role = textures::TextureRole::Value)
    {
        auto texture = textures::readConnectedTexture({_view, name, role, "", _log});
        if (texture)
            _material.textures.insert_or_assign(input, std::move(*texture));
        return texture.has_value();
    }

    bool isTextured(const char* input) const { return _material.textures.contains(input); }

    /// How much of a connected image shows. Documents know all or nothing.
    bool imageShows(const char* name, const char* fadeName) const
    {
        const float fade = number(fadeName, 1.0f);
        if (fade <= 0.0f)
            assets::dismissConnection(_view, name);
        else if (fade < 1.0f && assets::HasConnectedAsset(_view, name))
            _log.warning(DiagnosticCode::FadeIgnored, fadeName,
                         "the image is not blended with the plain value; it shows fully");
        return fade > 0.0f;
    }

    void readDiffuse()
    {
        const Color black(0.0f);
        const Color diffuse = readColor(_view, property::diffuse, black, _options.colorMode);
        const bool byObject = assets::GetBooleanOr(_view, property::colorByObject, false);
        _params.base_color = byObject ? Color(0.5f) : diffuse;
        if (imageShows(property::diffuse, property::diffuseFade))
            takeTexture(property::diffuse, "base_color");
    }

    void readReflectivity()
    {
        if (!has(property::reflectivity) || takeTexture(property::reflectivity, "specular"))
            return;
        const float reflectivity = number(property::reflectivity, 0.0f);
        if (reflectivity == 0.0f)
        {
            _params.metalness = 0.0f;
            _params.specular = 0.0f;
            return;
        }
        constexpr float dielectric = 0.15f; // at and below it a metal shows none of its nature
        constexpr float metallic = 0.7f;
        constexpr float between = 0.5499999523f; // their distance in 32-bit floats
        const bool metal = assets::GetBooleanOr(_view, property::isMetal, false);
        _params.specular = 1.0f;
        _params.specular_roughness = metal && reflectivity >= metallic ? 0.15f : 0.25f;
        if (metal)
            _params.metalness = reflectivity <= dielectric ? 0.0f
                                : reflectivity >= metallic ? 1.0f
                                                           : (reflectivity - dielectric) / between;
    }

    void readGlossiness()
    {
        if (!has(property::glossiness))
            return;
        if (takeTexture(property::glossiness, "specular_roughness"))
        {
            turnGlossinessImage();
            return;
        }
        const float roughness =
            roughnessOf(number(property::glossiness, 0.0f), _options.roughnessMode);
        _params.diffuse_roughness = roughness;
        _params.specular_roughness = roughness;
    }

    /// An image of glossiness is the inverse of one of roughness.
    void turnGlossinessImage()
    {
        auto& texture = _material.textures.at("specular_roughness");
        auto& bitmap = std::get<textures::BitmapTexture>(texture.content);
        bitmap.invert = !bitmap.invert;
        if (_options.roughnessMode != linearRoughness || bitmap.amount != 1.0f)
            _log.warning(DiagnosticCode::ValueAdjusted, property::glossiness,
                         "the image is inverted; the roughness curve is not applied to it, and an "
                         "amount other than 1 scales the roughness");
    }

    void readTransparency()
    {
        if (!has(property::transparency))
            return;
        const bool textured = imageShows(property::transparency, property::transparencyFade) &&
                              takeTexture(property::transparency, "transmission");
        if (!textured)
            _params.transmission = number(property::transparency, 0.0f);
        if (isTextured("transmission") || _params.transmission > 0.0f)
            readRefraction();
    }

    void readRefraction()
    {
        if (has(property::translucency) &&
            !takeTexture(property::translucency, "transmission_color"))
            _params.subsurface = number(property::translucency, 0.0f);
        if (_params.subsurface > 0.0f || isTextured("transmission_color"))
            _params.thin_walled = true;
        _params.specular_IOR = number(property::refractionIndex, _params.specular_IOR);
    }

    void readCutout()
    {
        if (!has(property::cutout) || takeTexture(property::cutout, "opacity"))
            return;
        if (number(property::cutout, 1.0f) != 1.0f)
            _log.warning(DiagnosticCode::CutoutIgnored, property::cutout,
                         "only an image cuts out; the plain value has no effect");
    }

    void readSelfIllumination()
    {
        if (!has(property::luminance))
            return;
        const float luminance = assets::readUnitless(_view, property::luminance, 0.0f, _log,
                                                     assets::candelaPerSquareMeter);
        if (luminance > 0.0f)
            _params.emission = luminance / luminanceOfEmissionOne;
        if (has(property::filterMap) && !takeTexture(property::filterMap, "emission_color"))
            _params.emission_color =
                readColor(_view, property::filterMap, _params.emission_color, _options.colorMode);
    }

    void readBump()
    {
        if (!has(property::bumpAmount))
            return;
        _material.bumpAmount = number(property::bumpAmount, 0.0f);
        if (has(property::bumpMap))
            takeTexture(property::bumpMap, "normal", textures::TextureRole::Relief);
    }

    const assets::AssetView& _view;
    const ConverterOptions& _options;
    const Log& _log;
    GenericMaterial _material;
    StandardSurfaceParams& _params = _material.params;
};

void printProperties(const assets::AssetView& view)
{
    const assets::AssetView unused(view.asset(), view.table());
    for (const char* name : property::all)
        if (assets::FindProperty(unused, name))
            assets::WriteProperty(unused, name, std::cout);
}

/// Roughness at glossiness 1, 0.95, ... 0.
constexpr std::array<float, 21> roughnessTable = {
    0.0f,    0.0125f, 0.025f, 0.0375f, 0.05f, 0.065f, 0.08f, 0.0975f, 0.115f, 0.134f, 0.155f,
    0.1775f, 0.2f,    0.23f,  0.26f,   0.3f,  0.35f,  0.41f, 0.5f,    0.66f,  1.0f};

} // namespace

float roughnessOf(float glossiness, std::int32_t roughnessMode)
{
    if (glossiness <= 0.0f)
        return 1.0f;
    if (glossiness >= 1.0f)
        return 0.0f;
    const float x = 1.0f - glossiness;
    if (roughnessMode == linearRoughness)
        return x;
    // A glossiness just above 0 rounds to x = 1, which would start at the table's last row.
    const std::size_t i = std::min(static_cast<std::size_t>(x * 20.0f), roughnessTable.size() - 2);
    const float f = (x - static_cast<float>(i) * 0.05f) * 20.0f;
    return std::min(1.0f, (1.0f - f) * roughnessTable[i] + f * roughnessTable[i + 1]);
}

GenericMaterial readGenericMaterial(const assets::AssetView& view, const ConverterOptions& options,
                                    const Log& log)
{
    if (options.verbose)
        printProperties(view);
    return GenericReader(view, options, log).read();
}

} // namespace vyr::MaterialTranslation::materials
