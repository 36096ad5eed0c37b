#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/ConverterOptions.h>

#include "core/Log.h"
#include "materials/GenericMaterial.h"

namespace vyr::MaterialTranslation::materials
{

/// Adds a material to a document: shader node, material node, the look when it is asked for, and a
/// node graph when textures drive shader inputs.
/// @param name base of the element names.
/// @return false, with the reason in the log and nothing added, when the document is null or one of
///         the names is taken in it.
bool buildStandardSurface(const MaterialX::DocumentPtr& document, const std::string& name,
                          const std::string& assetId, const GenericMaterial& material,
                          const ConverterOptions& options, const core::Log& log);

} // namespace vyr::MaterialTranslation::materials
