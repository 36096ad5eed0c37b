#pragma once

#include <map>
#include <string>
#include <vector>

#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/Definitions.h>
#include <MaterialTranslation/Validation.h>

namespace vyr::tests
{

namespace mx = MaterialX;
using Lines = std::vector<std::string>;

/// A node with every input that its definition has a value for.
inline mx::NodePtr addNode(const mx::GraphElementPtr& graph, const mx::NodeDefPtr& definition,
                           const std::string& name)
{
    static const std::map<std::string, std::string> units = {
        {"distance", "inch"}, {"angle", "degrees"}, {"luminance", "footlambert"}};
    const mx::NodePtr node =
        graph->addNode("kvor:" + definition->getNodeString(), name, definition->getType());
    for (const mx::InputPtr& declared : definition->getInputs())
    {
        if (!declared->hasValueString())
            continue;
        const mx::InputPtr input = node->addInput(declared->getName(), declared->getType());
        input->setValueString(declared->getValueString());
        if (declared->hasUnitType())
        {
            input->setUnitType(declared->getUnitType());
            input->setUnit(units.at(declared->getUnitType()));
        }
        if (input->getType() == "color3" || input->getType() == "filename")
            input->setColorSpace("srgb_texture");
    }
    return node;
}

/// By shading node, a document of it with a graph of all textures, and inputs with a value, a unit and
/// a colour space as the converter writes them.
inline std::map<std::string, mx::DocumentPtr> samples()
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
        {
            if (texture->getNamespace() != "kvor" || !texture->getInput("file"))
                continue;
            const std::string name = texture->getNodeString() + "_" + texture->getType();
            graph->addOutput(name + "_output", texture->getType())
                ->setConnectedNode(addNode(graph, texture, name));
        }
        for (const auto& [input, texture] : {std::pair("surface_albedo", "bitmap_color3_output"),
                                             {"surface_normal", "height_map_vector3_output"},
                                             {"surface_roughness", "bitmap_float_output"}})
        {
            shader->removeInput(input);
            const mx::OutputPtr output = graph->getOutput(texture);
            shader->addInput(input, output->getType())->setConnectedOutput(output);
        }
        result[definition->getNodeString()] = document;
    }
    return result;
}

/// The text of a document with `content` between the tags of its root, and the document.
inline std::string textOf(const std::string& content)
{
    return "<?xml version=\"1.0\"?><materialx version=\"1.39\">" + content + "</materialx>";
}

inline mx::DocumentPtr documentOf(const std::string& content)
{
    const mx::DocumentPtr document = mx::createDocument();
    mx::readFromXmlString(document, textOf(content));
    return document;
}

/// "path: code: text" of each message.
inline Lines lines(const std::vector<MaterialTranslation::ValidationMessage>& messages)
{
    Lines result;
    for (const auto& message : messages)
        result.push_back(message.path + ": " +
                         MaterialTranslation::validationCodeName(message.code) + ": " +
                         message.text);
    return result;
}

} // namespace vyr::tests
