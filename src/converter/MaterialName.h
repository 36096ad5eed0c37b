#pragma once

#include <string>

#include "assets/AssetView.h"

namespace vyr::MaterialTranslation::converter
{

/// The name of an asset's material, a valid MaterialX identifier.
/// @param useIdentifier whether the asset's identifier is part of it even when the asset's English
///        name would do.
std::string materialName(const assets::IAssetInstance& asset, bool useIdentifier);

} // namespace vyr::MaterialTranslation::converter
