#include "graph/Inputs.h"

namespace vyr::MaterialTranslation::graph
{

namespace mx = MaterialX;

mx::InputPtr addFileInput(const mx::NodePtr& node, const std::string& path,
                          const std::string& colorSpace)
{
    mx::InputPtr input = addInput(node, "file", mx::FILENAME_TYPE_STRING);
    input->setValueString(path);
    if (!colorSpace.empty())
        input->setColorSpace(colorSpace);
    return input;
}

mx::InputPtr addInput(const mx::InterfaceElementPtr& node, const std::string& name,
                      const std::string& type)
{
    return node->addInput(name, type);
}

void connectInput(const mx::InputPtr& input, const mx::ElementPtr& source)
{
    if (!source)
        return;
    if (source->asA<mx::Input>())
        input->setInterfaceName(source->getName());
    else
        input->setNodeName(source->getName());
}

mx::InputPtr addConnectedInput(const mx::NodePtr& node, const std::string& name,
                               const mx::OutputPtr& output)
{
    mx::InputPtr input = addInput(node, name, output->getType());
    input->setConnectedOutput(output);
    return input;
}

void setInputUnit(const mx::InputPtr& input, const assets::Unit& unit)
{
    const auto& [name, unitType] = unit;
    if (!name.empty())
        input->setUnit(name);
    if (!unitType.empty())
        input->setUnitType(unitType);
}

} // namespace vyr::MaterialTranslation::graph
