#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "graph/Inputs.h"
#include "graph/Nodes.h"
#include "graph/UtilityNodes.h"
#include "support/Documents.h"

namespace vyr::MaterialTranslation::graph
{

namespace
{

namespace mx = MaterialX;

using Lines = std::vector<std::string>;

/// Each input as "name type source", where the source is "<node>", "(interface)" or a value.
Lines inputLines(const mx::NodePtr& node)
{
    Lines lines;
    for (const mx::InputPtr& input : node->getInputs())
    {
        std::string line = input->getName() + " " + input->getType();
        if (input->hasNodeName())
            line += " <" + input->getNodeName() + ">";
        if (input->hasInterfaceName())
            line += " (" + input->getInterfaceName() + ")";
        if (input->hasValueString())
            line += " " + input->getValueString();
        lines.push_back(line);
    }
    return lines;
}

class Connections : public ::testing::Test
{
  protected:
    mx::DocumentPtr _document = mx::createDocument();
    mx::NodeGraphPtr _graph = addNodeGraph(_document, "graph");
    mx::InputPtr _published = _graph->addInput("published", "color3");
    mx::NodePtr _sibling = addConstantFloat(_graph, "sibling", 0.25f);
};

TEST_F(Connections, GoByTheKindOfTheSource)
{
    const mx::NodePtr node = addNode(_graph, "image", "node", "color3");
    connectInput(addInput(node, "from_node", "color3"), _sibling);
    connectInput(addInput(node, "from_input", "vector3"), _published);
    connectInput(addInput(node, "from_nothing", "float"), nullptr);
    EXPECT_EQ(inputLines(node), (Lines{"from_node color3 <sibling>",
                                       "from_input vector3 (published)", "from_nothing float"}))
        << "the input's type stays, whatever that of the source";
}

TEST_F(Connections, ReachOutputsOfGraphs)
{
    const mx::OutputPtr output = addNodeOutput(_graph, _sibling);
    EXPECT_EQ(output->getName(), "sibling_output");
    EXPECT_EQ(output->getType(), "float");
    const mx::NodePtr shader = addNode(_document, "standard_surface", "shader", "surfaceshader");
    const mx::InputPtr input = addConnectedInput(shader, "base", output);
    EXPECT_EQ(input->getType(), "float");
    EXPECT_EQ(input->getNodeGraphString(), "graph");
    EXPECT_EQ(input->getOutputString(), "sibling_output");
    EXPECT_EQ(input->getConnectedOutput(), output);
    _published->setValue(mx::Color3(0.0f));
    EXPECT_TRUE(support::isSound(_document));
}

TEST_F(Connections, OfUtilityNodesFollowTheFirstSource)
{
    const auto extract = addExtract(_graph, "extract", _published, 2);
    EXPECT_EQ(extract->getType(), "float");
    EXPECT_EQ(inputLines(extract), (Lines{"in color3 (published)", "index integer 2"}));

    const auto switched = addSwitch(_graph, "switched", _sibling, _published, 7);
    EXPECT_EQ(switched->getCategory() + " " + switched->getType(), "switch float");
    EXPECT_EQ(inputLines(switched),
              (Lines{"in1 float <sibling>", "in2 float (published)", "which integer 7"}))
        << "the type of the second source does not count, and the selector is not clamped";
    EXPECT_EQ(inputLines(addSwitch(_graph, "colors", _published, nullptr, 0)),
              (Lines{"in1 color3 (published)", "in2 color3", "which integer 0"}));

    EXPECT_EQ(inputLines(addMix(_graph, "mixed", _published, _sibling, 0.5f)),
              (Lines{"fg color3 (published)", "bg color3 <sibling>", "mix float 0.5"}));
    EXPECT_EQ(inputLines(addBinary(_graph, "subtract", "minus", _sibling, extract)),
              (Lines{"in1 float <sibling>", "in2 float <extract>"}));
    EXPECT_EQ(inputLines(_sibling), (Lines{"value float 0.25"}));
}

TEST_F(Connections, OfUtilityNodesWithoutASourceStayOpen)
{
    EXPECT_EQ(inputLines(addExtract(_graph, "extract", nullptr, 0)),
              (Lines{"in float", "index integer 0"}));
    EXPECT_EQ(inputLines(addSwitch(_graph, "switched", nullptr, _published, 0)),
              (Lines{"in1 float", "in2 float (published)", "which integer 0"}));
}

struct UnitCase
{
    assets::Unit unit;
    const char* unitAttribute;
    const char* typeAttribute;
};

const UnitCase unitCases[] = {
    {{"", ""}, "", ""},
    {{"foot", "distance"}, "foot", "distance"},
    // A code of a known kind without a name: the kind alone is stated.
    {{"", "distance"}, "", "distance"},
};

TEST_F(Connections, UnitsAreAttributesOnlyWhereKnown)
{
    for (const UnitCase& one : unitCases)
    {
        const mx::NodePtr node = addNode(_graph, "absval", "", "float");
        const mx::InputPtr input = addTypedInput(node, "in", 1.0f);
        setInputUnit(input, one.unit);
        EXPECT_EQ(input->getAttribute("unit"), one.unitAttribute);
        EXPECT_EQ(input->getAttribute("unittype"), one.typeAttribute);
        EXPECT_EQ(input->hasAttribute("unit"), !one.unit.first.empty());
        EXPECT_TRUE(support::isSound(_document));
    }
}

} // namespace

} // namespace vyr::MaterialTranslation::graph
