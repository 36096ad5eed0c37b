#include "ByHand.h"

namespace vyr::benchmarks
{

namespace mx = MaterialX;

namespace
{

constexpr const char* linear = "lin_rec709";

void addFloat(const mx::NodePtr& node, const char* name, float value)
{
    node->addInput(name, "float")->setValueString(mx::toValueString(value));
}

mx::InputPtr addColor(const mx::NodePtr& node, const char* name, const mx::Color3& value)
{
    mx::InputPtr input = node->addInput(name, "color3");
    input->setValueString(mx::toValueString(value));
    return input;
}

} // namespace

HandMaterial valuesOf(const mx::DocumentPtr& document)
{
    const mx::NodePtr shader = document->getNodes("standard_surface").at(0);
    const mx::NodePtr material = document->getNodes("surfacematerial").at(0);
    const auto number = [&](const char* name)
    { return shader->getInput(name)->getValue()->asA<float>(); };
    const auto color = [&](const char* name)
    { return shader->getInput(name)->getValue()->asA<mx::Color3>(); };
    return {material->getName(),
            material->getAttribute("vyr_asset"),
            material->getAttribute("vyr_converter"),
            number("base"),
            number("metalness"),
            color("base_color"),
            number("specular"),
            number("diffuse_roughness"),
            number("specular_roughness"),
            number("specular_IOR"),
            number("transmission"),
            color("transmission_color"),
            number("subsurface"),
            number("coat"),
            number("coat_roughness"),
            number("coat_IOR"),
            number("emission"),
            color("emission_color"),
            color("opacity"),
            shader->getInput("thin_walled")->getValue()->asA<bool>()};
}

mx::DocumentPtr buildByHand(const HandMaterial& m)
{
    const mx::DocumentPtr document = mx::createDocument();
    document->setColorSpace(linear);
    const mx::NodePtr shader =
        document->addNode("standard_surface", m.name + "_shader", "surfaceshader");
    const mx::NodePtr material = document->addMaterialNode(m.name, shader);
    material->setAttribute("vyr_converter", m.converter);
    material->setAttribute("vyr_asset", m.id);
    addFloat(shader, "base", m.base);
    addFloat(shader, "metalness", m.metalness);
    addColor(shader, "base_color", m.baseColor)->setColorSpace(linear);
    addFloat(shader, "specular", m.specular);
    addFloat(shader, "diffuse_roughness", m.diffuseRoughness);
    addFloat(shader, "specular_roughness", m.specularRoughness);
    addFloat(shader, "specular_IOR", m.ior);
    addFloat(shader, "transmission", m.transmission);
    addColor(shader, "transmission_color", m.transmissionColor)->setColorSpace(linear);
    addFloat(shader, "subsurface", m.subsurface);
    addFloat(shader, "coat", m.coat);
    addFloat(shader, "coat_roughness", m.coatRoughness);
    addFloat(shader, "coat_IOR", m.coatIor);
    addFloat(shader, "emission", m.emission);
    addColor(shader, "emission_color", m.emissionColor)->setColorSpace(linear);
    addColor(shader, "opacity", m.opacity);
    shader->addInput("thin_walled", "boolean")->setValueString(mx::toValueString(m.thinWalled));
    return document;
}

} // namespace vyr::benchmarks
