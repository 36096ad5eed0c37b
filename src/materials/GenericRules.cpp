#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include <kelvor/platform/assets/UnitCode.h>

#include "materials/GenericRows.h"
#include "materials/Translators.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

using Color = StandardSurfaceParams::Color;
using textures::Texture;

bool isGenericProperty(const std::string& name)
{
    return std::ranges::find(genericProperties, name, &GenericProperty::name) !=
           std::end(genericProperties);
}

/// Candela per square metre that count as an emission of 1.
constexpr float luminanceOfEmissionOne = 1000.0f;

/// The roughness mode without a curve.
constexpr std::int32_t linearRoughness = 2;

/// Roughness at glossiness 1, 0.95, ... 0.
constexpr std::array<float, 21> roughnessTable = {
    0.0f,    0.0125f, 0.025f, 0.0375f, 0.05f, 0.065f, 0.08f, 0.0975f, 0.115f, 0.134f, 0.155f,
    0.1775f, 0.2f,    0.23f,  0.26f,   0.3f,  0.35f,  0.41f, 0.5f,    0.66f,  1.0f};

/// Surface roughness of a glossiness of 0 to 1; values outside count as the nearer end.
/// @param roughnessMode 2: 1 - glossiness. Any other: a curve through 21 points, flatter at the
///        smooth end.
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

/// Applies the rules, one function each, to one material.
class GenericRules
{
  public:
    GenericRules(const assets::Asset& asset, const Translation& translation)
        : _asset(asset), _options(translation.options), _log(translation.log),
          _colors{asset, translation.options.colorMode, translation.log},
          _textures(asset, translation)
    {
    }

    StandardSurface read()
    {
        readTextures();
        _textures.bake();

        readDiffuse();
        readReflectivity();
        readGlossiness();
        readTransparency();
        readCutout();
        readSelfIllumination();
        readBump();
        _textures.dropUnused();
        _asset.reportUnread(_log, isGenericProperty);
        return std::move(_material);
    }

  private:
    assets::Property at(const GenericProperty& property) const { return _asset[property.row.name]; }

    /// The plain number of a property; nothing when it has none.
    std::optional<float> number(const GenericProperty& property, std::uint32_t unit = 0) const
    {
        const assets::Property value = at(property);
        return value.hasValue() ? std::optional(value.bareNumber(_log, unit)) : std::nullopt;
    }

    void readTextures()
    {
        const auto shows = [&](const GenericProperty& p)
        {
            return p.input && at(p).isConnected() &&
                   (!p.fade || _asset[p.fade].numberIfAny().value_or(1.0f) > 0.0f) &&
                   (!*p.row.needs || _asset[p.row.needs].hasValue()) &&
                   (!p.mayShow || p.mayShow(_asset));
        };
        for (const GenericProperty& property : genericProperties)
            if (shows(property))
                _textures.read(property.row.name, property.role, shaderInputType(property.input),
                               at(row("generic_bump_amount")).numberIfAny().value_or(0.0f));
    }

    /// Enters the texture connected to a property for its shader input. Of a fade documents know all or
    /// nothing.
    /// @return null when there is none that can be used.
    Texture* takeTexture(const GenericProperty& property)
    {
        const assets::Property driven = at(property);
        const float fade = property.fade ? fadeOf(property) : 1.0f;
        if (fade <= 0.0f)
            driven.settleConnection();
        else if (fade < 1.0f && _textures.isUsable(driven))
            _log.warning(DiagnosticCode::FadeIgnored, property.fade,
                         "the image is not blended with the plain value; it shows fully");
        std::optional<Texture> texture = _textures.take(driven);
        if (!texture)
            return nullptr;
        return &_material.textures
                    .insert_or_assign(property.input,
                                      DrivingTexture{property.row.name, std::move(*texture)})
                    .first->second.texture;
    }

    float fadeOf(const GenericProperty& property) const
    {
        const assets::Property fade = _asset[property.fade];
        return fade.hasValue() ? fade.bareNumber(_log) : 1.0f;
    }

    void readDiffuse()
    {
        const Color diffuse = _colors.read(row("generic_diffuse").row.name, Color(0.0f));
        const bool byObject = at(row("color_by_object")).boolean(false);
        _params.base_color = byObject ? Color(0.5f) : diffuse;
        takeTexture(row("generic_diffuse"));
    }

    void readReflectivity()
    {
        if (takeTexture(row("generic_reflectivity_at_0deg")))
            return;
        const std::optional<float> reflectivity = number(row("generic_reflectivity_at_0deg"));
        if (!reflectivity)
            return;
        if (*reflectivity == 0.0f)
        {
            _params.metalness = 0.0f;
            _params.specular = 0.0f;
            return;
        }
        constexpr float dielectric = 0.15f; // at and below it a metal shows none of its nature
        constexpr float metallic = 0.7f;
        constexpr float between = 0.5499999523f; // their distance in 32-bit floats
        const bool metal = at(row("generic_is_metal")).boolean(false);
        _params.specular = 1.0f;
        _params.specular_roughness = metal && *reflectivity >= metallic ? 0.15f : 0.25f;
        if (metal)
            _params.metalness = *reflectivity <= dielectric ? 0.0f
                                : *reflectivity >= metallic
                                    ? 1.0f
                                    : (*reflectivity - dielectric) / between;
    }

    void readGlossiness()
    {
        if (Texture* texture = takeTexture(row("generic_glossiness")))
            return turnGlossinessImage(texture->tone);
        const std::optional<float> glossiness = number(row("generic_glossiness"));
        if (!glossiness)
            return;
        _params.diffuse_roughness = roughnessOf(*glossiness, _options.roughnessMode);
        _params.specular_roughness = _params.diffuse_roughness;
    }

    /// An image of glossiness is the inverse of one of roughness.
    void turnGlossinessImage(std::optional<textures::Tone>& tone) const
    {
        tone->invert = !tone->invert;
        if (_options.roughnessMode != linearRoughness || tone->amount != 1.0f)
            _log.warning(DiagnosticCode::ValueAdjusted, row("generic_glossiness").row.name,
                         "the image is inverted; the roughness curve is not applied to it, and an "
                         "amount other than 1 scales the roughness");
    }

    void readTransparency()
    {
        const GenericProperty& transparency = row("generic_transparency");
        if (!at(transparency).hasValue() && !at(transparency).isConnected())
            return;
        const bool textured = takeTexture(transparency) != nullptr;
        if (!textured)
            _params.transmission = number(transparency).value_or(_params.transmission);
        if (textured || _params.transmission > 0.0f)
            readRefraction();
    }

    void readRefraction()
    {
        const GenericProperty& translucency = row("generic_refraction_translucency_weight");
        const bool textured = takeTexture(translucency) != nullptr;
        if (!textured)
            _params.subsurface = number(translucency).value_or(_params.subsurface);
        if (textured || _params.subsurface > 0.0f)
            _params.thin_walled = true;
        _params.specular_IOR =
            number(row("generic_refraction_index")).value_or(_params.specular_IOR);
    }

    void readCutout()
    {
        const GenericProperty& cutout = row("generic_cutout_opacity");
        if (!takeTexture(cutout) && number(cutout).value_or(1.0f) != 1.0f)
            _log.warning(DiagnosticCode::CutoutIgnored, cutout.row.name,
                         "only an image cuts out; the plain value has no effect");
    }

    void readSelfIllumination()
    {
        const std::optional<float> luminance =
            number(row("generic_self_illum_luminance"),
                   kelvor::platform::assets::eUnit_CandelaPerSquareMeter);
        if (!luminance)
            return;
        if (*luminance > 0.0f)
            _params.emission = *luminance / luminanceOfEmissionOne;
        if (!takeTexture(row("generic_self_illum_filter_map")))
            _params.emission_color =
                _colors.read(row("generic_self_illum_filter_map").row.name, _params.emission_color);
    }

    void readBump()
    {
        if (number(row("generic_bump_amount")))
            takeTexture(row("generic_bump_map"));
    }

    const assets::Asset& _asset;
    const ConverterOptions& _options;
    const Log& _log;
    assets::ColorReader _colors;
    textures::TextureSet _textures;
    StandardSurface _material;
    StandardSurfaceParams& _params = _material.params;
};

} // namespace

StandardSurface readGenericProperties(const assets::Asset& asset, const Translation& translation)
{
    return GenericRules(asset, translation).read();
}

} // namespace vyr::MaterialTranslation::materials
