#include <map>
#include <string>
#include <vector>

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

std::string text(const std::vector<ValidationMessage>& messages)
{
    std::string all;
    for (const ValidationMessage& message : messages)
        all += message.path + ": " + message.text + "\n";
    return all;
}

mx::DocumentPtr inForm(const mx::DocumentPtr& document, NodeForm form)
{
    const mx::DocumentPtr copy = document->copy();
    EXPECT_EQ(text(applyNodeForm(copy, form)), "");
    return copy;
}

/// As a reader gets it.
mx::DocumentPtr readBack(const mx::DocumentPtr& document)
{
    const mx::DocumentPtr copy = mx::createDocument();
    mx::readFromXmlString(copy, mx::writeToXmlString(document));
    return copy;
}

bool isOurs(const mx::ElementPtr& element)
{
    return mx::stringStartsWith(element->getCategory(), "kvor:");
}

/// The input that carries a value of the given name on the only node of a category.
mx::InputPtr inputOf(const mx::GraphElementPtr& graph, const std::string& category,
                     const std::string& name)
{
    const std::vector<mx::NodePtr> nodes = graph->getNodes(category);
    return nodes.size() == 1 ? nodes.front()->getInput(name) : nullptr;
}

TEST(NodeForms, StandAloneWithTheStandardLibrary)
{
    for (const Sample& sample : samples())
        for (const NodeForm form : {NodeForm::Embed, NodeForm::Standard})
        {
            const mx::DocumentPtr document = readBack(inForm(sample.document, form));
            EXPECT_EQ(text(validateDocument(document, {{}, DefinitionSet::Standard})), "")
                << sample.name;
            EXPECT_EQ(mx::writeToXmlString(document).find("xi:include"), std::string::npos);
            for (const char* name :
                 {"sample", "sample_shader", "NG_sample", "NG_sample/bitmap_color3",
                  "NG_sample/height_map_vector3", "NG_sample/bitmap_color4_output"})
                EXPECT_NE(document->getDescendant(name), nullptr) << sample.name << " " << name;
            EXPECT_EQ(document->getNode("sample")->getInput("surfaceshader")->getConnectedNode(),
                      document->getNode("sample_shader"));
        }
}

TEST(NodeForms, StandardHasNoNodeOfOursAndEmbedHasWhatItUses)
{
    for (const Sample& sample : samples())
    {
        for (const mx::ElementPtr& element :
             inForm(sample.document, NodeForm::Standard)->traverseTree())
            EXPECT_FALSE(isOurs(element) || element->isA<mx::NodeDef>()) << element->getNamePath();
        const mx::DocumentPtr embedded = inForm(sample.document, NodeForm::Embed);
        for (const std::string other : {"metal", "opaque", "transparent", "layered", "glazing"})
            EXPECT_EQ(embedded->getChild("kvor:ND_" + other + "_surfaceshader") != nullptr,
                      other == sample.name);
    }
}

TEST(NodeForms, AreTheSameEveryTimeAndFromEachOther)
{
    for (const Sample& sample : samples())
    {
        std::map<NodeForm, std::string> written;
        for (const NodeForm form : {NodeForm::Reference, NodeForm::Embed, NodeForm::Standard})
        {
            written[form] = mx::writeToXmlString(inForm(sample.document, form));
            for (int i = 0; i < 3; ++i)
                EXPECT_EQ(mx::writeToXmlString(inForm(sample.document, form)), written[form]);
        }
        const mx::DocumentPtr embedded = inForm(sample.document, NodeForm::Embed);
        EXPECT_EQ(mx::writeToXmlString(inForm(embedded, NodeForm::Embed)),
                  written[NodeForm::Embed]);
        EXPECT_EQ(mx::writeToXmlString(inForm(embedded, NodeForm::Standard)),
                  written[NodeForm::Standard]);
        EXPECT_EQ(written[NodeForm::Reference], mx::writeToXmlString(sample.document));
        EXPECT_EQ(inForm(embedded, NodeForm::Reference)->getNodeDefs().size(), 0u);
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
    const Case cases[] = {
        {R"(type="vector2" value="2, 10" unit="inch" unittype="distance")", "2, 10 inch distance",
         "0.0508, 0.254 meter distance"},
        {R"(type="vector2" value="2, 10")", "2, 10  ", "2, 10  "},
        {R"(type="float" value="90" unit="degrees" unittype="angle")", "90 degree angle",
         "90 degree angle"},
        {R"(type="float" value="2" unit="radians" unittype="angle")", "114.592 degree angle",
         "114.592 degree angle"},
        {R"(type="float" value="2" unit="radian" unittype="angle")", "2 radian angle",
         "114.592 degree angle"},
        {R"(type="float" value="2" unit="footlambert" unittype="luminance")", "6.85252  ",
         "6.85252  "},
        {R"(type="float" value="2" unit="candelapersquaremeter" unittype="luminance")", "2  ",
         "2  "},
        {R"(type="float" value="2" unittype="luminance")", "2  ", "2  "},
    };
    for (const Case& c : cases)
        for (const NodeForm form : {NodeForm::Embed, NodeForm::Standard})
        {
            const mx::DocumentPtr document =
                documentOf(std::string(R"(<constant name="n"><input name="value" )") +
                           c.attributes + "/></constant>");
            EXPECT_EQ(text(applyNodeForm(document, form)), "");
            const mx::InputPtr input = document->getNode("n")->getInput("value");
            EXPECT_EQ(input->getValueString() + " " + input->getUnit() + " " + input->getUnitType(),
                      form == NodeForm::Embed ? c.embedded : c.standard);
        }
}

TEST(NodeForms, KeepColourTransformsWhereTheyBelong)
{
    struct Case
    {
        const char* type;
        const char* space;
        const char* settings;
        const char* imageSpace;
        bool transformed;
    };
    constexpr const char* invert = R"(<input name="invert" type="boolean" value="true"/>)";
    constexpr const char* amount = R"(<input name="rgbamount" type="float" value="0.5"/>)";
    constexpr const char* nothing =
        R"(<input name="invert" type="boolean" value="false"/><input name="rgbamount" type="float" value="1.0"/>)";
    const Case cases[] = {
        {"color3", "srgb_texture", nothing, "srgb_texture", false},
        {"color3", "srgb_texture", invert, "none", true},
        {"color4", "srgb_texture", amount, "none", true},
        {"color3", "lin_rec709", invert, "lin_rec709", false},
        {"float", "srgb_texture", invert, "", false},
        {"vector3", "srgb_texture", nothing, "", false},
    };
    for (const Case& c : cases)
    {
        const std::string type = c.type;
        const mx::DocumentPtr document =
            documentOf(R"(<nodegraph name="g"><kvor:bitmap name="b" type=")" + type +
                       R"("><input name="file" type="filename" value="a.png" colorspace=")" +
                       c.space + "\"/>" + c.settings + R"(</kvor:bitmap><output name="o" type=")" +
                       type + R"(" nodename="b"/></nodegraph>)");
        EXPECT_EQ(text(applyNodeForm(document, NodeForm::Standard)), "");
        const mx::NodeGraphPtr graph = document->getNodeGraph("g");
        EXPECT_EQ(inputOf(graph, "image", "file")->getColorSpace(), c.imageSpace) << c.settings;
        EXPECT_EQ(graph->getOutput("o")->getNodeName(), c.transformed ? "b_linear" : "b");
        EXPECT_EQ(inputOf(graph, "srgb_texture_to_lin_rec709", "in") != nullptr, c.transformed);
    }
}

TEST(NodeForms, LeaveWhatTheyDoNotKnowAndSaySo)
{
    const std::string content =
        R"(<kvor:felt name="a" type="surfaceshader"/><kvor:bitmap name="b" type="matrix33"/>)"
        R"(<constant name="c" type="float"><input name="value" type="float" value="1" unit="furlong" unittype="distance"/></constant>)";
    const mx::DocumentPtr document = documentOf(content);
    EXPECT_EQ(text(applyNodeForm(document, NodeForm::Standard)),
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
    EXPECT_EQ(text(applyNodeForm(document, NodeForm::Standard)), "");
    EXPECT_EQ(text(validateDocument(document, {{}, DefinitionSet::Standard})), "");
    for (const char* name : {"image", "scaled", "kvor_geomNode_UV0"})
        EXPECT_EQ(document->getDescendant(std::string("g/") + name)->getCategory(), "multiply")
            << name;
}

} // namespace
} // namespace vyr::tests
