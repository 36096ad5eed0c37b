#include "materials/StandardSurface.h"

#include "assets/ColorSpaces.h"
#include "base/Text.h"
#include "graph/Nodes.h"
#include "textures/Translation.h"

namespace vyr::MaterialTranslation::materials
{

namespace mx = MaterialX;

namespace
{

constexpr const char* lookName = "default";
constexpr const char* shaderSuffix = "_shader";

/// The first of the names that the document already uses, or that the look needs; empty when all are
/// free. The look itself may be there already: several materials share it.
std::string takenName(const mx::DocumentPtr& document, std::initializer_list<std::string> names,
                      bool addLook)
{
    for (const std::string& name : names)
        if (document->getChild(name) || (addLook && name == lookName))
            return name;
    const bool lookIsTaken =
        addLook && document->getChild(lookName) && !document->getLook(lookName);
    return lookIsTaken ? lookName : std::string();
}

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

void assignInLook(const mx::DocumentPtr& document, const std::string& material)
{
    mx::LookPtr look = document->getLook(lookName);
    const bool first = !look;
    if (first)
        look = document->addLook(lookName);
    constexpr const char* everything = "*";
    const std::string name = first ? "material_assign_default" : "material_assign_" + material;
    look->addMaterialAssign(graph::freeName(look, name), material)->setGeom(everything);
}

} // namespace

MaterialPlace placeOf(const Translation& translation)
{
    return {translation.document, translation.name, translation.options.addLook, translation.log};
}

bool Skeleton::isPossible(const MaterialPlace& place, const char* graphSuffix)
{
    if (!place.document)
    {
        place.log.error(DiagnosticCode::NoDocument, "", "no document was given");
        return false;
    }
    const std::string& name = place.name;
    const std::string taken =
        takenName(place.document, {name, name + shaderSuffix, name + graphSuffix}, place.addLook);
    if (!taken.empty())
        place.log.error(DiagnosticCode::NameTaken, "",
                        "the document already has an element \"" + taken + "\"");
    return taken.empty();
}

Skeleton::Skeleton(const MaterialPlace& place, const std::string& category, const char* graphSuffix,
                   const std::string& assetId)
    : _graphName(place.name + graphSuffix)
{
    const mx::DocumentPtr& document = place.document;
    document->setColorSpace(assets::linearRec709);
    _shader =
        document->addNode(category, place.name + shaderSuffix, mx::SURFACE_SHADER_TYPE_STRING);
    _material = document->addMaterialNode(place.name, _shader);
    addProvenance(_material, assetId, place.log);
    if (place.addLook)
        assignInLook(document, place.name);
}

const mx::NodeGraphPtr& Skeleton::graph()
{
    if (!_graph)
        _graph = _shader->getDocument()->addNodeGraph(_graphName);
    return _graph;
}

mx::OutputPtr Skeleton::addTexture(const textures::Texture& texture, const std::string& property,
                                   const std::string& type)
{
    return textures::addTexture(texture, graph(), property, type);
}

} // namespace vyr::MaterialTranslation::materials
