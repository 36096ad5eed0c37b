#pragma once

#include <string>

#include <MaterialXCore/Document.h>

#include "assets/Log.h"

namespace vyr::MaterialTranslation::materials
{

/// What every material has, whatever its shading model.
struct SkeletonRequest
{
    /// Base of the element names.
    const std::string& name;
    /// Category of the shader node, such as "standard_surface".
    const std::string& category;
    /// Identifier of the asset, noted on the material.
    const std::string& assetId;
    /// Whether the look "default" assigns the material to all geometry.
    bool addLook = false;
    /// Name of the node graph of the material's textures.
    std::string graphName;
};

/// The elements that a translator fills.
struct Skeleton
{
    MaterialX::NodePtr shader;
    MaterialX::NodePtr material;
};

/// Whether the skeleton can be built: there is a document, and the names are free in it. Says why
/// not in the log.
bool canBuildSkeleton(const MaterialX::DocumentPtr& document, const SkeletonRequest& request,
                      const Log& log);

/// Builds shader node, material node and look, and sets the document's colour space, linear
/// Rec.709.
Skeleton buildSkeleton(const MaterialX::DocumentPtr& document, const SkeletonRequest& request,
                       const Log& log);

} // namespace vyr::MaterialTranslation::materials
