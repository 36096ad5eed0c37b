#include "materials/Skeleton.h"

#include <MaterialTranslation/Diagnostics.h>

#include "assets/Units.h"
#include "base/Text.h"
#include "graph/Names.h"
#include "graph/Nodes.h"

namespace vyr::MaterialTranslation::materials
{

namespace mx = MaterialX;

namespace
{

/// Tells who made a material from what, so that a document can be traced back.
void addProvenance(const mx::NodePtr& material, const std::string& assetId, const Log& log)
{
    material->setAttribute("vyr_converter", libraryVersion());
    if (assetId.empty())
        return;
    const std::string text = base::xmlText(assetId);
    material->setAttribute("vyr_asset", text);
    if (text != assetId)
        log.warning(DiagnosticCode::TextChanged, "",
                    "the identifier has characters that a document cannot hold");
}

} // namespace

bool canBuildSkeleton(const mx::DocumentPtr& document, const SkeletonRequest& request,
                      const Log& log)
{
    if (!document)
    {
        log.error(DiagnosticCode::NoDocument, "", "no document was given");
        return false;
    }
    const std::string taken = graph::takenName(
        document, {request.name, graph::shaderName(request.name), request.graphName},
        request.addLook);
    if (!taken.empty())
        log.error(DiagnosticCode::NameTaken, "",
                  "the document already has an element \"" + taken + "\"");
    return taken.empty();
}

Skeleton buildSkeleton(const mx::DocumentPtr& document, const SkeletonRequest& request,
                       const Log& log)
{
    document->setColorSpace(assets::linearRec709);
    Skeleton skeleton;
    skeleton.shader = graph::addNode(document, request.category, graph::shaderName(request.name),
                                     mx::SURFACE_SHADER_TYPE_STRING);
    skeleton.material = graph::addSurfaceMaterial(document, request.name, skeleton.shader);
    addProvenance(skeleton.material, request.assetId, log);
    if (request.addLook)
        graph::assignInDefaultLook(document, request.name);
    return skeleton;
}

} // namespace vyr::MaterialTranslation::materials
