#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/ConverterOptions.h>

#include "assets/AssetView.h"
#include "assets/Log.h"

namespace vyr::MaterialTranslation::materials
{

/// One asset on its way into a document. Everything is borrowed for the call.
struct Translation
{
    const assets::IAssetInstance& asset;
    /// Base of the element names.
    const std::string& name;
    const MaterialX::DocumentPtr& document;
    const ConverterOptions& options;
    const Log& log;
    /// Receives the image files that were baked for the material.
    std::vector<std::filesystem::path>& baked;
};

} // namespace vyr::MaterialTranslation::materials
