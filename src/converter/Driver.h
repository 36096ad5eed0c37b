#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/ConverterOptions.h>

#include "assets/AssetView.h"
#include "assets/Log.h"

namespace vyr::MaterialTranslation::converter
{

/// Translates an asset into a document with the translator of its schema.
/// @param options an empty output directory is replaced by the system's temporary one.
/// @return the translator's result; false also when the output directory, the name or the asset
///         cannot be used.
bool translate(const assets::IAssetInstance& asset, const std::string& name,
               const MaterialX::DocumentPtr& document, ConverterOptions& options, const Log& log);

} // namespace vyr::MaterialTranslation::converter
