#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "assets/AssetView.h"

/// @file
/// The one way in which the converter reads assets.
///
/// Every reader takes a property's name, looks it up in the view's table and answers with a plain
/// value. Unless said otherwise a property that is missing, without a value or of another type
/// throws PropertyError (an `std::invalid_argument`). Nothing here changes an asset.
namespace vyr::MaterialTranslation::assets
{

using Color3 = std::array<float, 3>; ///< red, green, blue
using Color4 = std::array<float, 4>; ///< red, green, blue, alpha
using Vector2 = std::array<float, 2>;
using Vector3 = std::array<float, 3>;

// Any property ------------------------------------------------------------------------------------

/// The property, or null when the asset has none of that name.
const IProperty* FindProperty(const AssetView& view, const char* name);

/// Whether the asset says anything by the property: it has a value or connected assets.
bool HasProperty(const AssetView& view, const char* name);

/// Whether the property exists and has a value.
bool HasPropertyValue(const AssetView& view, const char* name);

/// Whether assets are connected to the property.
bool HasConnectedAsset(const AssetView& view, const char* name);

/// Whether the property takes part in the material: one that only carries connections when it has
/// some, any other always, whatever it holds. False for a missing property.
bool IsPropertyActive(const AssetView& view, const char* name);

/// The property's identifier. Throws "Invalid property specified" when it is missing.
std::string GetPropertyIdentifier(const AssetView& view, const char* name);

/// The unit code of the property's value. Throws "Invalid property specified" when there is none.
std::uint32_t GetPropertyUnit(const AssetView& view, const char* name);

/// Whether the value has a physical unit. Throws like GetPropertyUnit.
bool HasPropertyUnit(const AssetView& view, const char* name);

// Values ------------------------------------------------------------------------------------------

bool GetBooleanProperty(const AssetView& view, const char* name);
int GetIntegerProperty(const AssetView& view, const char* name);
/// Component 0, narrowed to float; a number that is not finite there is an error.
float GetFloatProperty(const AssetView& view, const char* name);
/// The unit code and component 0.
std::pair<std::uint32_t, float> GetFloatWithUnitProperty(const AssetView& view, const char* name);
/// Components 0 and 1 of a value of *more than* two components; hosts store pairs with a third.
Vector2 GetVector2Property(const AssetView& view, const char* name);
/// Components 0 to 2 of a value of three or more components.
Vector3 GetVector3Property(const AssetView& view, const char* name);
Color3 GetColor3Property(const AssetView& view, const char* name);
Color4 GetColor4Property(const AssetView& view, const char* name);
std::string GetStringProperty(const AssetView& view, const char* name);
std::string GetTextProperty(const AssetView& view, const char* name);
/// The names of the selected choices, in the order of selection.
std::vector<std::string> GetChoiceListProperty(const AssetView& view, const char* name);

/// The value, or `fallback` when the asset lacks the property or its value. A value of another type
/// is an error.
float GetFloatOr(const AssetView& view, const char* name, float fallback);
bool GetBooleanOr(const AssetView& view, const char* name, bool fallback);
Color3 GetColor3Or(const AssetView& view, const char* name, const Color3& fallback);
/// The first selected choice, or `fallback` when there is none.
std::string GetFirstChoiceOr(const AssetView& view, const char* name, const char* fallback);

// Files -------------------------------------------------------------------------------------------

/// The reference resolved to a path by the asset library; the reference itself when nothing
/// resolves it. A reference that ends in a dot is also tried without it.
std::string GetUriProperty(const AssetView& view, const char* name);
/// GetUriProperty in the file system's normal form for texts.
std::string GetUriPathProperty(const AssetView& view, const char* name);
/// GetUriPathProperty, or empty when the asset lacks the property or its value.
std::string GetUriPathOrEmpty(const AssetView& view, const char* name);
/// The stored reference, unresolved; empty when missing or of another type.
std::wstring GetUriWideProperty(const AssetView& view, const char* name);
/// The preferred or else the stored reference resolved; unresolved when nothing resolves it; empty
/// when missing or of another type.
std::wstring GetResolvedWidePath(const AssetView& view, const char* name);

// Connected assets --------------------------------------------------------------------------------

/// The first connected asset.
ConnectedAsset GetConnectedAsset(const AssetView& view, const char* name);
/// The first connected asset if it names an image by "unifiedbitmap_Bitmap".
ConnectedAsset GetConnectedBitmapAsset(const AssetView& view, const char* name);
/// Schema of the first connected asset, or "No connected texture!".
std::string GetConnectedTextureName(const AssetView& view, const char* name);
/// Notes that the property's connection needs no further mention: it was taken up, or the material
/// itself switches it off.
void dismissConnection(const AssetView& view, const char* name);
/// Number of connected assets; 0 for a missing property.
std::size_t GetConnectionCount(const AssetView& view, const char* name);

// Assets ------------------------------------------------------------------------------------------

/// The asset's own name; empty when it has no identity.
std::string GetAssetName(const IAssetInstance& asset);
/// The name shown to people, in English.
std::string GetAssetDisplayName(const IAssetInstance& asset);
std::string GetAssetSchemaName(const IAssetInstance& asset);
std::string GetAssetDescription(const IAssetInstance& asset);
std::string GetAssetIdentifier(const IAssetInstance& asset);

// Texts and colours -------------------------------------------------------------------------------

/// Three channels of 0..255 as a colour of 0..1; not clamped.
Color3 ColorFromBytes(float red, float green, float blue);
/// What follows the first "_"; the whole text when there is none.
std::string SuffixAfterFirstUnderscore(const std::string& text);

} // namespace vyr::MaterialTranslation::assets
