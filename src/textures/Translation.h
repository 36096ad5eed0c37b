#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/ConverterOptions.h>

#include "assets/Asset.h"
#include "textures/MaterialFiles.h"

namespace vyr::MaterialTranslation
{

/// One asset on its way into a document, and all that the stages of its translation share. Everything is
/// borrowed for the call.
struct Translation
{
    const assets::IAssetInstance& asset;
    /// Base of the element names.
    const std::string& name;
    const MaterialX::DocumentPtr& document;
    const ConverterOptions& options;
    const BakeSettings& bakes;
    const Log& log;
    textures::MaterialFiles& files;
};

} // namespace vyr::MaterialTranslation
