#include "assets/ColorModes.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "assets/ColorSpaces.h"

namespace vyr::MaterialTranslation::assets
{

namespace
{

/// An encoding of colours: the power that makes them linear, and MaterialX's name.
struct Encoding
{
    double exponent;
    const char* colorSpace;
};

// The exponents are those of MaterialX's "g22_rec709" and "rec709_display".
constexpr Encoding linear{1.0, linearRec709};
constexpr Encoding gamma22{2.2, gamma22Rec709};
constexpr Encoding display{2.4, displayRec709};

struct ColorModeRow
{
    std::int32_t mode;
    /// What undeclared colours are taken for.
    Encoding takenFor;
    /// What documents state.
    Encoding written;
};

constexpr ColorModeRow colorModes[] = {
    {1, gamma22, linear},
    {2, display, linear},
    {3, gamma22, gamma22},
    {4, display, display},
};
constexpr ColorModeRow otherMode{0, linear, linear};

const ColorModeRow& rowOf(std::int32_t mode)
{
    const auto* row = std::ranges::find(colorModes, mode, &ColorModeRow::mode);
    return row == std::end(colorModes) ? otherMode : *row;
}

/// Each channel to a power. In double, so that the result does not hang on how exact the platform's
/// power function of floats is; negative channels, which no power is defined for, stay.
/// @param property named in the error when a channel becomes too large for a float.
ShaderColor toPower(ShaderColor color, double exponent, const char* property)
{
    if (exponent == 1.0)
        return color;
    for (std::size_t i = 0; i < ShaderColor::numElements(); ++i)
        if (color[i] > 0.0f)
            color[i] = static_cast<float>(std::pow(static_cast<double>(color[i]), exponent));
    const auto isFinite = [](float channel) { return std::isfinite(channel); };
    if (!std::ranges::all_of(color, isFinite))
        throw PropertyError("ePropertyType_Color", property, DiagnosticCode::ValueNotFinite,
                            "the colour is too bright for a 32-bit float");
    return color;
}

ShaderColor toColor(const Color3& color)
{
    return {color[0], color[1], color[2]};
}

} // namespace

const char* plainColorSpace(std::int32_t colorMode)
{
    return rowOf(colorMode).written.colorSpace;
}

ShaderColor ColorReader::read(const char* name, const ShaderColor& fallback) const
{
    const Property property = asset[name];
    if (!property.hasValue())
        return fallback;
    const ShaderColor color = toColor(property.color());
    const std::string declared = declaredColorSpace(asset, property, log);
    if (declared == displayRec709)
        return toPower(color, display.exponent / rowOf(colorMode).takenFor.exponent, name);
    return declared.empty() ? color : encodeLinear(color, colorMode);
}

ShaderColor ColorReader::linear(const char* name, const ShaderColor& fallback) const
{
    if (!asset[name].hasValue())
        return fallback;
    return toPower(read(name, fallback), rowOf(colorMode).takenFor.exponent, name);
}

DeclaredColor ColorReader::readDeclared(const char* name) const
{
    const Property property = asset[name];
    const ShaderColor color = toColor(property.color());
    const std::string declared = declaredColorSpace(asset, property, log);
    return {color, declared.empty() ? rowOf(colorMode).takenFor.colorSpace : declared};
}

ShaderColor encodeLinear(const ShaderColor& color, std::int32_t colorMode)
{
    return toPower(color, 1.0 / rowOf(colorMode).takenFor.exponent, "");
}

ShaderColor statedColor(const ShaderColor& color, std::int32_t colorMode)
{
    return toPower(color, 1.0 / rowOf(colorMode).written.exponent, "");
}

ShaderColor writtenColor(const ShaderColor& color, std::int32_t colorMode, const char* property)
{
    const ColorModeRow& row = rowOf(colorMode);
    return toPower(color, row.takenFor.exponent / row.written.exponent, property);
}

} // namespace vyr::MaterialTranslation::assets
