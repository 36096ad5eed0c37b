#include "Documents.h"

#include <map>

#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/Definitions.h>

namespace vyr::tests
{

namespace mx = MaterialX;
using MaterialTranslation::definitionLibrary;

namespace
{

const std::map<std::string, std::string> values = {
    {"vector2", "0.5, 2"},
    {"vector3", "0, 0, 1"},
    {"color3", "0.2, 0.4, 0.6"},
    {"color4", "0.2, 0.4, 0.6, 1"},
    {"float", "0.5"},
    {"boolean", "true"},
    {"string", "clamp"},
};

const std::map<std::string, std::string> units = {
    {"distance", "inch"}, {"angle", "degrees"}, {"luminance", "footlambert"}};

/// A node with every input of its definition set.
mx::NodePtr addNode(const mx::GraphElementPtr& graph, const mx::NodeDefPtr& definition,
                    const std::string& name)
{
    const mx::NodePtr node =
        graph->addNode("kvor:" + definition->getNodeString(), name, definition->getType());
    for (const mx::InputPtr& declared : definition->getInputs())
    {
        const mx::InputPtr input = node->addInput(declared->getName(), declared->getType());
        if (declared->getType() == mx::FILENAME_TYPE_STRING)
        {
            input->setValueString(VYR_SOURCE_DIR "/samples/textures/oak_color.jpg");
            input->setColorSpace("srgb_texture");
            continue;
        }
        input->setValueString(values.at(declared->getType()));
        if (declared->hasUnitType())
        {
            input->setUnitType(declared->getUnitType());
            input->setUnit(units.at(declared->getUnitType()));
        }
        if (declared->getType() == "color3")
            input->setColorSpace("g22_rec709");
    }
    return node;
}

bool isTexture(const mx::NodeDefPtr& definition)
{
    return definition->getInput("file") != nullptr;
}

void connect(const mx::InputPtr& input, const mx::NodeGraphPtr& graph, const std::string& output)
{
    for (const char* attribute : {"value", "unit", "unittype", "colorspace"})
        input->removeAttribute(attribute);
    input->setNodeGraphString(graph->getName());
    input->setOutputString(output);
}

/// Connects all that textures can give to the first inputs of their types.
void addTextures(const mx::DocumentPtr& document, const mx::NodePtr& shader)
{
    const mx::NodeGraphPtr graph = document->addNodeGraph("NG_sample");
    for (const mx::NodeDefPtr& definition : definitionLibrary()->getNodeDefs())
        if (definition->getNamespace() == "kvor" && isTexture(definition))
        {
            const std::string name = definition->getNodeString() + "_" + definition->getType();
            const mx::NodePtr node = addNode(graph, definition, name);
            graph->addOutput(name + "_output", node->getType())->setConnectedNode(node);
            for (const mx::InputPtr& input : shader->getInputs())
                if (input->getType() == node->getType() && input->hasValueString())
                {
                    connect(input, graph, name + "_output");
                    break;
                }
        }
}

} // namespace

std::vector<Sample> samples()
{
    std::vector<Sample> result;
    for (const mx::NodeDefPtr& definition : definitionLibrary()->getNodeDefs())
    {
        if (definition->getNamespace() != "kvor" || definition->getType() != "surfaceshader")
            continue;
        const mx::DocumentPtr document = mx::createDocument();
        document->setColorSpace("lin_rec709");
        const mx::NodePtr shader = addNode(document, definition, "sample_shader");
        document->addMaterialNode("sample", shader);
        addTextures(document, shader);
        result.push_back({definition->getNodeString(), document});
    }
    return result;
}

mx::DocumentPtr documentOf(const std::string& content)
{
    const mx::DocumentPtr document = mx::createDocument();
    mx::readFromXmlString(document, "<?xml version=\"1.0\"?><materialx version=\"1.39\">" +
                                        content + "</materialx>");
    return document;
}

} // namespace vyr::tests
