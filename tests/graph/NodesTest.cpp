#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "graph/Inputs.h"
#include "graph/Nodes.h"
#include "graph/Placement.h"
#include "graph/UtilityNodes.h"
#include "support/Documents.h"

namespace vyr::MaterialTranslation::graph
{

namespace
{

namespace mx = MaterialX;

using Lines = std::vector<std::string>;

/// "category type" of a node, then "name type" of each input with what it reads and states.
Lines linesOf(const mx::NodePtr& node)
{
    Lines lines{node->getCategory() + " " + node->getType()};
    for (const mx::InputPtr& input : node->getInputs())
    {
        lines.push_back(input->getName() + " " + input->getType());
        for (const char* attribute :
             {"nodename", "interfacename", "value", "colorspace", "unit", "unittype"})
            if (input->hasAttribute(attribute))
                lines.back() += std::string(" ") + attribute + "=" + input->getAttribute(attribute);
    }
    return lines;
}

class Nodes : public ::testing::Test
{
  protected:
    mx::DocumentPtr _document = mx::createDocument();
    mx::NodeGraphPtr _graph = addNodeGraph(_document, "graph");
    mx::InputPtr _published = _graph->addInput("published", "color3");
    mx::NodePtr _sibling = addConstantFloat(_graph, "sibling", 0.25f);
};

TEST_F(Nodes, AreConnectedByTheKindOfTheSource)
{
    const mx::NodePtr node = addNode(_graph, "image", "node", "color3");
    connectInput(addInput(node, "a", "color3"), _sibling);
    connectInput(addInput(node, "b", "vector3"), _published);
    connectInput(addInput(node, "c", "float"), nullptr);
    EXPECT_EQ(linesOf(node), (Lines{"image color3", "a color3 nodename=sibling",
                                    "b vector3 interfacename=published", "c float"}));
}

TEST_F(Nodes, FollowTheTypeOfTheFirstSource)
{
    const struct
    {
        mx::NodePtr node;
        Lines expected;
    } cases[] = {
        {_sibling, {"constant float", "value float value=0.25"}},
        {addExtract(_graph, "a", _published, 2),
         {"extract float", "in color3 interfacename=published", "index integer value=2"}},
        {addExtract(_graph, "b", nullptr, 0),
         {"extract float", "in float", "index integer value=0"}},
        {addSwitch(_graph, "c", _sibling, _published, 7),
         {"switch float", "in1 float nodename=sibling", "in2 float interfacename=published",
          "which integer value=7"}},
        {addSwitch(_graph, "d", nullptr, _published, 0),
         {"switch float", "in1 float", "in2 float interfacename=published",
          "which integer value=0"}},
        {addMix(_graph, "e", _published, nullptr, 0.5f),
         {"mix color3", "fg color3 interfacename=published", "bg color3", "mix float value=0.5"}},
        {addBinary(_graph, "subtract", "f", _published, _sibling),
         {"subtract color3", "in1 color3 interfacename=published", "in2 color3 nodename=sibling"}},
    };
    for (const auto& [node, expected] : cases)
        EXPECT_EQ(linesOf(node), expected);
}

TEST_F(Nodes, PlaceDecalsAndThreads)
{
    TextureInfo texture;
    texture.path = kelvor::platform::core::string::UTF8String("decal.png");
    texture.realWorldOffsetU = 1;
    texture.realWorldOffsetV = 2;
    texture.realWorldScaleU = 3;
    texture.realWorldScaleV = 4;
    texture.unit = 4;
    texture.uvOffsetU = 5;
    texture.uvOffsetV = 6;
    texture.uvScaleU = 7;
    texture.uvScaleV = 8;
    texture.rotation = 9;
    const auto expected = [](const char* node, const char* colorSpace, const std::string& mode)
    {
        return Lines{node,
                     std::string("file filename value=decal.png colorspace=") + colorSpace,
                     "realworld_offset vector2 value=1, 2 unit=inch unittype=distance",
                     "realworld_scale vector2 value=3, 4 unit=inch unittype=distance",
                     "uv_offset vector2 value=5, 6",
                     "uv_scale vector2 value=7, 8",
                     "rotation_angle float value=9",
                     "uaddressmode string value=" + mode,
                     "vaddressmode string value=" + mode};
    };
    EXPECT_EQ(linesOf(addPlacedTextureNode(_graph, "decal", texture, "color4")),
              expected("kvor:bitmap color4", "srgb_texture", "clamp"));
    for (const bool linear : {false, true})
        EXPECT_EQ(linesOf(addPlacedTextureNode(_graph, "kvor:normal_map", linear ? "l" : "s",
                                               texture, "vector3", linear)),
                  expected("kvor:normal_map vector3", linear ? "lin_rec709" : "srgb_texture",
                           "periodic"));
    _published->setValue(mx::Color3(0.0f));
    EXPECT_TRUE(support::isSound(_document));
}

} // namespace

} // namespace vyr::MaterialTranslation::graph
