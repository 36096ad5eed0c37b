#include <gtest/gtest.h>

#include <MaterialTranslation/NodeForms.h>

#include "Documents.h"

namespace vyr::tests
{
namespace
{

using namespace MaterialTranslation;

const ValidationOptions alone{{}, DefinitionSet::Standard};

std::string inForm(const std::string& text, NodeForm form)
{
    const mx::DocumentPtr document = mx::createDocument();
    mx::readFromXmlString(document, text);
    EXPECT_EQ(lines(applyNodeForm(document, form)), Lines());
    return mx::writeToXmlString(document);
}

TEST(NodeForms, OfEverySampleStandAloneAndAreTheSameEveryTime)
{
    for (const auto& [node, sample] : samples())
    {
        SCOPED_TRACE(node);
        const std::string reference = mx::writeToXmlString(sample);
        const std::string embedded = inForm(reference, NodeForm::Embed);
        const std::string standard = inForm(reference, NodeForm::Standard);
        EXPECT_EQ(inForm(reference, NodeForm::Reference), reference);
        EXPECT_EQ(inForm(reference, NodeForm::Embed), embedded);
        EXPECT_EQ(inForm(embedded, NodeForm::Embed), embedded);
        EXPECT_EQ(inForm(embedded, NodeForm::Standard), standard);
        EXPECT_EQ(inForm(embedded, NodeForm::Reference).find("<nodedef"), embedded.npos);
        EXPECT_EQ((standard + embedded).find("xi:include"), embedded.npos);
        EXPECT_EQ(standard.find("kvor:"), standard.npos);
        EXPECT_EQ(standard.find("<nodedef"), standard.npos);
        for (const auto& [other, unused] : samples())
            EXPECT_EQ(embedded.find("\"kvor:ND_" + other + "_surfaceshader\"") != embedded.npos,
                      other == node);
        for (const std::string& text : {embedded, standard})
        {
            const mx::DocumentPtr document = mx::createDocument();
            mx::readFromXmlString(document, text);
            EXPECT_EQ(lines(validateDocument(document, alone)), Lines());
            for (const char* name : {"NG_sample/bitmap_color3", "NG_sample/height_map_vector3",
                                     "NG_sample/bitmap_color4_output"})
                EXPECT_TRUE(document->getDescendant(name)) << name;
            EXPECT_EQ(document->getNode("sample")->getInput("surfaceshader")->getConnectedNode(),
                      document->getNode("sample_shader"));
            for (const mx::NodePtr& image : document->getNodeGraph("NG_sample")->getNodes("image"))
                EXPECT_EQ(image->getInput("file")->hasColorSpace(), image->isColorType());
        }
    }
}

TEST(NodeForms, ConvertUnits)
{
    // The attributes of an input, and its value, unit and unit type in the two forms that stand alone.
    // clang-format off
    const char* const cases[][3] = {
        {R"(type="vector2" value="2, 10" unit="inch" unittype="distance")", "2, 10 inch distance", "0.0508, 0.254 meter distance"},
        {R"(type="vector2" value="2, 10")", "2, 10  ", "2, 10  "},
        {R"(type="float" value="90" unit="degrees" unittype="angle")", "90 degree angle", "90 degree angle"},
        {R"(type="float" value="2" unit="radians" unittype="angle")", "114.592 degree angle", "114.592 degree angle"},
        {R"(type="float" value="2" unit="radian" unittype="angle")", "2 radian angle", "114.592 degree angle"},
        {R"(type="float" value="2" unit="footlambert" unittype="luminance")", "6.85252  ", "6.85252  "},
        {R"(type="float" value="2" unit="candelapersquarefoot" unittype="luminance")", "21.5278  ", "21.5278  "},
        {R"(type="float" value="2" unittype="luminance")", "2  ", "2  "},
    };
    // clang-format on
    for (const auto& [attributes, embedded, standard] : cases)
        for (const bool embed : {true, false})
        {
            const mx::DocumentPtr document =
                documentOf(std::string(R"(<constant name="n"><input name="value" )") + attributes +
                           "/></constant>");
            applyNodeForm(document, embed ? NodeForm::Embed : NodeForm::Standard);
            const mx::InputPtr input = document->getNode("n")->getInput("value");
            EXPECT_EQ(input->getValueString() + " " + input->getUnit() + " " + input->getUnitType(),
                      embed ? embedded : standard);
        }
}

TEST(NodeForms, LeaveWhatTheyDoNotKnowAndSaySo)
{
    const std::string content =
        R"(<kvor:felt name="a" type="surfaceshader"/><kvor:bitmap name="b" type="matrix33"/>)"
        R"(<constant name="c" type="float"><input name="value" type="float" value="1" unit="furlong" unittype="distance"/></constant>)"
        R"(<constant name="d" type="float"><input name="value" type="float" value="3e38" unit="mile" unittype="distance"/></constant>)"
        R"(<constant name="e" type="vector2"><input name="value" type="vector2" value="1, 1e-44" unit="nanometer" unittype="distance"/></constant>)";
    const mx::DocumentPtr document = documentOf(content);
    std::string text;
    for (const ValidationMessage& message : applyNodeForm(document, NodeForm::Standard))
        text += message.path + ": " + message.text + "\n";
    EXPECT_EQ(text,
              "a: no definition of \"kvor:felt\" fits\nb: no definition of \"kvor:bitmap\" fits\n"
              "c/value: no unit \"furlong\" of type \"distance\"\n"
              "d/value: 3e38 mile is beyond a 32-bit float in meter\n"
              "e/value: 1, 1e-44 nanometer is beyond a 32-bit float in meter\n");
    EXPECT_EQ(mx::writeToXmlString(document), mx::writeToXmlString(documentOf(content)));
}

TEST(NodeForms, SurviveNamesThatTheirGraphsUse)
{
    // Nodes called as those that come in place of others, in both orders.
    const mx::DocumentPtr document = documentOf(
        R"(<nodegraph name="g"><kvor:bitmap name="image" type="float"/><kvor:bitmap name="scaled" type="float"/>)"
        R"(<kvor:bitmap name="geomNode_UV0" type="float"/><add name="sum" type="float"><input name="in1" type="float" nodename="image"/>)"
        R"(<input name="in2" type="float" nodename="scaled"/></add><output name="o" type="float" nodename="sum"/></nodegraph>)");
    EXPECT_EQ(lines(applyNodeForm(document, NodeForm::Standard)), Lines());
    EXPECT_EQ(lines(validateDocument(document, alone)), Lines());
    for (const std::string name : {"g/image", "g/scaled", "g/kvor_geomNode_UV0"})
        EXPECT_EQ(document->getDescendant(name)->getCategory(), "multiply") << name;
}

TEST(NodeForms, NameNoNodeAtTheTopLikeOneInAGraph)
{
    // The shading node and the normal map both bring a node called "turned".
    const mx::DocumentPtr document = documentOf(
        R"(<kvor:metal name="m" type="surfaceshader"><input name="surface_normal" type="vector3" nodegraph="g" output="o"/></kvor:metal>)"
        R"(<nodegraph name="g"><kvor:normal_map name="n" type="vector3"/><output name="o" type="vector3" nodename="n"/></nodegraph>)");
    EXPECT_EQ(lines(applyNodeForm(document, NodeForm::Standard)), Lines());
    EXPECT_EQ(lines(validateDocument(document, alone)), Lines());
    const mx::NodeGraphPtr graph = document->getNodeGraph("g");
    EXPECT_TRUE(graph->getNode("turned"));
    for (const mx::NodePtr& node : document->getNodes())
        EXPECT_TRUE(node->getName().rfind("geomNode_", 0) == 0 || !graph->getNode(node->getName()))
            << node->getName();
}

} // namespace
} // namespace vyr::tests
