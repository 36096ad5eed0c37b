#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include <kelvor/platform/assets/UnitCode.h>

#include "assets/AssetView.h"

namespace vyr::MaterialTranslation::assets
{

/// The colour spaces that documents use, by MaterialX's names.
inline constexpr const char* linearRec709 = "lin_rec709";
inline constexpr const char* gamma22Rec709 = "g22_rec709";
inline constexpr const char* displayRec709 = "rec709_display";
inline constexpr const char* srgbTexture = "srgb_texture";

/// MaterialX's name of the unit type of lengths.
inline constexpr const char* distanceUnitType = "distance";
/// And of angles.
inline constexpr const char* angleUnitType = "angle";

/// A unit and its unit type, by the names that documents use. Either may be empty.
using Unit = std::pair<std::string, std::string>;

/// The unit of a unit code. An unknown code of a known family has an empty unit; any other unknown
/// code leaves both empty. Values are never converted: a document states the asset's own unit.
Unit UnitForCode(std::uint32_t code);

/// The length unit of a TextureInfo's unit index; "centimeter" for an index outside the table.
std::string DistanceUnitName(std::int32_t index);

/// Unit code of the luminances that documents give as bare numbers.
inline constexpr std::uint32_t candelaPerSquareMeter =
    kelvor::platform::assets::eUnit_CandelaPerSquareMeter;

/// The unit of a property's value, as the document states it. A unit that is not known is reported,
/// and one of another kind than the input takes: no shader can be generated from either.
/// @param unitType of the numbers that the input takes; empty where they have no unit.
/// @return two empty texts for a value without a unit.
Unit readUnit(const AssetView& view, const char* name, const std::string& unitType, const Log& log);

/// A number of a property whose unit the document has no place for; any other unit than `expected`
/// is reported.
/// @return `fallback` when the asset lacks the property or its value.
/// @throws PropertyError for a property of the wrong type.
float readUnitless(const AssetView& view, const char* name, float fallback, const Log& log,
                   std::uint32_t expected = 0);

/// What follows a colour property's identifier in the name of the companion that declares its colour
/// space.
inline constexpr const char* colorSpaceSuffix = "_colorspace";

/// The colour space that the asset declares for a colour property, as the name of the first choice
/// selected in its companion property "<identifier>_colorspace"; "colorspace_not_specified" when it
/// declares none.
std::string GetPropertyColorSpace(const AssetView& view, const char* name);

/// Whether a declared colour space is the display-referred one (Rec.709 primaries, power 2.4).
bool declaresGamma24(const std::string& declared);
/// Whether a declared colour space is linear Rec.709.
bool declaresLinear(const std::string& declared);

} // namespace vyr::MaterialTranslation::assets
