#include "materials/ColorPass.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "assets/PropertyError.h"
#include "assets/Units.h"

namespace vyr::MaterialTranslation::materials
{

namespace
{

using Color = StandardSurfaceParams::Color;

struct ColorModeRow
{
    std::int32_t mode;
    /// Whether documents state the linear colour.
    bool decodes;
    /// Power that makes an undeclared colour linear.
    double exponent;
    const char* colorSpace;
};

// The exponents are those of MaterialX's "g22_rec709" and "rec709_display".
constexpr double displayExponent = 2.4;
constexpr ColorModeRow colorModes[] = {
    {1, true, 2.2, assets::linearRec709},
    {2, true, displayExponent, assets::linearRec709},
    {3, false, 2.2, assets::gamma22Rec709},
    {4, false, displayExponent, assets::displayRec709},
};
constexpr ColorModeRow otherMode{0, false, 1.0, assets::linearRec709};

const ColorModeRow& rowOf(std::int32_t mode)
{
    const auto* row =
        std::ranges::find_if(colorModes, [mode](const ColorModeRow& r) { return r.mode == mode; });
    return row == std::end(colorModes) ? otherMode : *row;
}

/// Each channel to a power. In double, so that the result does not hang on how exact the platform's
/// power function of floats is; negative channels, which no power is defined for, stay.
/// @param property named in the error when a channel becomes too large for a float.
Color toPower(Color color, double exponent, const char* property)
{
    if (exponent == 1.0)
        return color;
    for (std::size_t i = 0; i < Color::numElements(); ++i)
        if (color[i] > 0.0f)
            color[i] = static_cast<float>(std::pow(static_cast<double>(color[i]), exponent));
    const auto isFinite = [](float channel) { return std::isfinite(channel); };
    if (!std::ranges::all_of(color, isFinite))
        throw assets::PropertyError("ePropertyType_Color", property, DiagnosticCode::ValueNotFinite,
                                    "the colour is too bright for a 32-bit float");
    return color;
}

} // namespace

const char* plainColorSpace(std::int32_t colorMode)
{
    return rowOf(colorMode).colorSpace;
}

Color readColor(const assets::AssetView& view, const char* property, const Color& fallback,
                std::int32_t colorMode)
{
    if (!assets::HasPropertyValue(view, property))
        return fallback;
    const assets::Color3 value = assets::GetColor3Property(view, property);
    const Color color(value[0], value[1], value[2]);
    const std::string declared = assets::GetPropertyColorSpace(view, property);
    if (assets::declaresGamma24(declared))
        return toPower(color, displayExponent / rowOf(colorMode).exponent, property);
    if (assets::declaresLinear(declared))
        return encodeLinear(color, colorMode);
    return color;
}

Color encodeLinear(const Color& color, std::int32_t colorMode)
{
    return toPower(color, 1.0 / rowOf(colorMode).exponent, "");
}

void applyColorPass(GenericMaterial& material, std::int32_t colorMode)
{
    const ColorModeRow& row = rowOf(colorMode);
    if (!row.decodes)
        return;
    StandardSurfaceParams& params = material.params;
    const auto decode = [&](Color& color, const char* property)
    { color = toPower(color, row.exponent, property); };
    decode(params.base_color, "generic_diffuse");
    decode(params.transmission_color, "generic_diffuse");
    decode(params.emission_color, "generic_self_illum_filter_map");
    if (material.tint)
        decode(*material.tint, "hardwood_tint_color");
}

} // namespace vyr::MaterialTranslation::materials
