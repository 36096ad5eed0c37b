#include "ByHand.h"

namespace vyr::benchmarks
{

namespace mx = MaterialX;

namespace
{

struct HandInput
{
    std::string name;
    std::string type;
    std::string colorSpace;
};

/// The inputs that every document has.
std::vector<HandInput>& inputs()
{
    static std::vector<HandInput> known;
    return known;
}

} // namespace

HandMaterial valuesOf(const mx::DocumentPtr& document)
{
    const mx::NodePtr shader = document->getNodes("standard_surface").at(0);
    const mx::NodePtr material = document->getNodes("surfacematerial").at(0);
    HandMaterial hand{material->getName(),
                      material->getAttribute("vyr_asset"),
                      material->getAttribute("vyr_converter"),
                      {}};
    inputs().clear();
    for (const mx::InputPtr& input : shader->getInputs())
    {
        inputs().push_back({input->getName(), input->getType(), input->getColorSpace()});
        const mx::ValuePtr value = input->getValue();
        if (value->isA<float>())
            hand.values.emplace_back(value->asA<float>());
        else if (value->isA<bool>())
            hand.values.emplace_back(value->asA<bool>());
        else
            hand.values.emplace_back(value->asA<mx::Color3>());
    }
    return hand;
}

mx::DocumentPtr buildByHand(const HandMaterial& m)
{
    const mx::DocumentPtr document = mx::createDocument();
    document->setColorSpace("lin_rec709");
    const mx::NodePtr shader =
        document->addNode("standard_surface", m.name + "_shader", "surfaceshader");
    const mx::NodePtr material = document->addMaterialNode(m.name, shader);
    material->setAttribute("vyr_converter", m.converter);
    material->setAttribute("vyr_asset", m.id);
    for (std::size_t i = 0; i < m.values.size(); ++i)
    {
        const auto& [name, type, colorSpace] = inputs()[i];
        const mx::InputPtr input = shader->addInput(name, type);
        input->setValueString(
            std::visit([](const auto& value) { return mx::toValueString(value); }, m.values[i]));
        if (!colorSpace.empty())
            input->setColorSpace(colorSpace);
    }
    return document;
}

} // namespace vyr::benchmarks
