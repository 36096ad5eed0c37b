#include "Documents.h"

#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/Definitions.h>

namespace vyr::tests
{

namespace mx = MaterialX;

namespace
{

/// A node with every input of its definition set.
mx::NodePtr addNode(const mx::GraphElementPtr& graph, const mx::NodeDefPtr& definition,
                    const std::string& name)
{
    static const std::map<std::string, std::string> values = {
        {"vector2", "0.5, 2"},
        {"vector3", "0, 0, 1"},
        {"color3", "0.2, 0.4, 0.6"},
        {"float", "0.5"},
        {"boolean", "true"},
        {"string", "clamp"},
        {"filename", VYR_SOURCE_DIR "/samples/textures/oak_color.jpg"},
    };
    static const std::map<std::string, std::string> units = {
        {"distance", "inch"}, {"angle", "degrees"}, {"luminance", "footlambert"}};
    const mx::NodePtr node =
        graph->addNode("kvor:" + definition->getNodeString(), name, definition->getType());
    for (const mx::InputPtr& declared : definition->getInputs())
    {
        const std::string type = declared->getType();
        const mx::InputPtr input = node->addInput(declared->getName(), type);
        input->setValueString(values.at(type));
        if (declared->hasUnitType())
        {
            input->setUnitType(declared->getUnitType());
            input->setUnit(units.at(declared->getUnitType()));
        }
        if (type == "color3" || type == "filename")
            input->setColorSpace(type == "color3" ? "g22_rec709" : "srgb_texture");
    }
    return node;
}

/// Adds a texture, and connects it to the first free input of its type.
void addTexture(const mx::NodeGraphPtr& graph, const mx::NodeDefPtr& definition,
                const mx::NodePtr& shader)
{
    const std::string name = definition->getNodeString() + "_" + definition->getType();
    const mx::NodePtr node = addNode(graph, definition, name);
    graph->addOutput(name + "_output", node->getType())->setConnectedNode(node);
    for (const mx::InputPtr& input : shader->getInputs())
        if (input->getType() == node->getType() && input->hasValueString())
        {
            for (const char* attribute : {"value", "unit", "unittype", "colorspace"})
                input->removeAttribute(attribute);
            input->setNodeGraphString(graph->getName());
            input->setOutputString(name + "_output");
            return;
        }
}

} // namespace

std::map<std::string, mx::DocumentPtr> samples()
{
    std::map<std::string, mx::DocumentPtr> result;
    const auto definitions = MaterialTranslation::definitionLibrary()->getNodeDefs();
    for (const mx::NodeDefPtr& definition : definitions)
    {
        if (definition->getNamespace() != "kvor" || definition->getType() != "surfaceshader")
            continue;
        const mx::DocumentPtr document = mx::createDocument();
        document->setColorSpace("lin_rec709");
        const mx::NodePtr shader = addNode(document, definition, "sample_shader");
        document->addMaterialNode("sample", shader);
        const mx::NodeGraphPtr graph = document->addNodeGraph("NG_sample");
        for (const mx::NodeDefPtr& texture : definitions)
            if (texture->getNamespace() == "kvor" && texture->getInput("file"))
                addTexture(graph, texture, shader);
        result[definition->getNodeString()] = document;
    }
    return result;
}

std::string textOf(const std::string& content)
{
    return "<?xml version=\"1.0\"?><materialx version=\"1.39\">" + content + "</materialx>";
}

mx::DocumentPtr documentOf(const std::string& content)
{
    const mx::DocumentPtr document = mx::createDocument();
    mx::readFromXmlString(document, textOf(content));
    return document;
}

std::vector<std::string> lines(const std::vector<MaterialTranslation::ValidationMessage>& messages)
{
    std::vector<std::string> result;
    for (const auto& message : messages)
        result.push_back(message.path + ": " +
                         MaterialTranslation::validationCodeName(message.code) + ": " +
                         message.text);
    return result;
}

} // namespace vyr::tests
