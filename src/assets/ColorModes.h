#pragma once

#include <cstdint>
#include <string>

#include <MaterialXCore/Types.h>

#include "assets/Asset.h"

/// @file
/// What the plain colours of assets outside the "Lyrex" family are taken for, by ConverterOptions::colorMode.
namespace vyr::MaterialTranslation::assets
{

using ShaderColor = MaterialX::Color3;

/// Colour space of a document's plain colours.
const char* plainColorSpace(std::int32_t colorMode);

/// A colour as an asset states it.
struct DeclaredColor
{
    ShaderColor color;
    std::string colorSpace;
};

/// Reads colours of one asset.
struct ColorReader
{
    const Asset& asset;
    std::int32_t colorMode;
    const Log& log;

    /// A colour in the encoding that the colour mode takes undeclared colours to have. A colour whose
    /// companion declares another one is re-encoded, so that all colours of a record agree.
    /// @return `fallback` when the asset lacks the property or its value.
    /// @throws PropertyError also for a colour that its encoding makes too large.
    ShaderColor read(const char* property, const ShaderColor& fallback) const;

    /// The same as linear Rec.709; so is the fallback.
    ShaderColor linear(const char* property, const ShaderColor& fallback) const;

    /// A colour as the asset states it, with the colour space that it declares, or else the one that the
    /// colour mode takes it to have. The property has a value.
    DeclaredColor readDeclared(const char* property) const;
};

/// A linear colour in the encoding that the colour mode takes undeclared colours to have.
ShaderColor encodeLinear(const ShaderColor& color, std::int32_t colorMode);

/// A linear colour as documents of the colour mode state it.
ShaderColor statedColor(const ShaderColor& color, std::int32_t colorMode);

/// A colour in that encoding as documents of the colour mode state it: linear in some modes.
/// @param property named in the error.
/// @throws PropertyError for a colour that would become too large for a float.
ShaderColor writtenColor(const ShaderColor& color, std::int32_t colorMode, const char* property);

} // namespace vyr::MaterialTranslation::assets
