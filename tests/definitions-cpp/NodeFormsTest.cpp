#include <gtest/gtest.h>

#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/NodeForms.h>

#include "Documents.h"

namespace vyr::tests
{
namespace
{

namespace mx = MaterialX;
using namespace MaterialTranslation;
using Lines = std::vector<std::string>;

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
        for (const std::string other : {"metal", "opaque", "transparent", "layered", "glazing"})
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
        }
    }
}

TEST(NodeForms, ConvertUnits)
{
    struct Case
    {
        const char* attributes;
        const char* embedded;
        const char* standard;
    };
    // clang-format off
    const Case cases[] = {
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
    for (const Case& c : cases)
        for (const NodeForm form : {NodeForm::Embed, NodeForm::Standard})
        {
            const mx::DocumentPtr document =
                documentOf(std::string(R"(<constant name="n"><input name="value" )") +
                           c.attributes + "/></constant>");
            EXPECT_EQ(lines(applyNodeForm(document, form)), Lines());
            const mx::InputPtr input = document->getNode("n")->getInput("value");
            EXPECT_EQ(input->getValueString() + " " + input->getUnit() + " " + input->getUnitType(),
                      form == NodeForm::Embed ? c.embedded : c.standard);
        }
}

TEST(NodeForms, KeepColourTransformsWhereTheyBelong)
{
    struct Case
    {
        std::string type;
        std::string space;
        std::string setting;
        const char* imageSpace;
        bool transformed;
    };
    const char* invert = R"("invert" type="boolean" value="true")";
    const char* amount = R"("rgbamount" type="float" value="0.5")";
    const char* nothing = R"("rgbamount" type="float" value="1.0")";
    const Case cases[] = {
        {"color3", "srgb_texture", nothing, "srgb_texture", false},
        {"color3", "srgb_texture", invert, "none", true},
        {"color4", "srgb_texture", amount, "none", true},
        {"color3", "lin_rec709", invert, "lin_rec709", false},
        {"float", "srgb_texture", invert, "", false},
    };
    for (const Case& c : cases)
    {
        const mx::DocumentPtr document = documentOf(
            R"(<nodegraph name="g"><kvor:bitmap name="b" type=")" + c.type +
            R"("><input name="file" type="filename" value="a.png" colorspace=")" + c.space +
            "\"/><input name=" + c.setting + R"(/></kvor:bitmap><output name="o" type=")" + c.type +
            R"(" nodename="b"/></nodegraph>)");
        EXPECT_EQ(lines(applyNodeForm(document, NodeForm::Standard)), Lines());
        const mx::NodeGraphPtr graph = document->getNodeGraph("g");
        ASSERT_EQ(graph->getNodes("image").size(), 1u);
        EXPECT_EQ(graph->getNodes("image")[0]->getInput("file")->getColorSpace(), c.imageSpace);
        EXPECT_EQ(graph->getOutput("o")->getNodeName(), c.transformed ? "b_linear" : "b");
        EXPECT_EQ(graph->getNodes("srgb_texture_to_lin_rec709").size(), c.transformed ? 1u : 0u);
    }
}

TEST(NodeForms, LeaveWhatTheyDoNotKnowAndSaySo)
{
    const std::string content =
        R"(<kvor:felt name="a" type="surfaceshader"/><kvor:bitmap name="b" type="matrix33"/>)"
        R"(<constant name="c" type="float"><input name="value" type="float" value="1" unit="furlong" unittype="distance"/></constant>)";
    const mx::DocumentPtr document = documentOf(content);
    std::string text;
    for (const ValidationMessage& message : applyNodeForm(document, NodeForm::Standard))
        text += message.path + ": " + message.text + "\n";
    EXPECT_EQ(text,
              "a: no definition of \"kvor:felt\" fits\nb: no definition of \"kvor:bitmap\" fits\n"
              "c/value: no unit \"furlong\" of type \"distance\"\n");
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

} // namespace
} // namespace vyr::tests
