#include <string>

#include <gtest/gtest.h>

#include "graph/Inputs.h"
#include "graph/Names.h"
#include "graph/NodeLines.h"
#include "graph/Nodes.h"
#include "graph/Placement.h"
#include "graph/UtilityNodes.h"
#include "support/Documents.h"

namespace vyr::MaterialTranslation::graph
{

namespace
{

namespace mx = MaterialX;

using graphtests::Lines;
using graphtests::linesOf;

TEST(Names, AreIdentifiersOfAsciiLettersDigitsAndUnderscores)
{
    EXPECT_FALSE(isIdentifier(""));
    for (int c = -128; c < 128; ++c)
    {
        const std::string name(1, static_cast<char>(c));
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        const bool digit = c >= '0' && c <= '9';
        EXPECT_EQ(isIdentifier(name), letter) << c;
        EXPECT_EQ(isIdentifier("a" + name), letter || digit) << c;
    }
}

TEST(Names, ThatAreFreeCountUpFromTwo)
{
    const mx::DocumentPtr document = mx::createDocument();
    const auto take = [&]
    {
        const std::string name = freeName(document, "graph");
        document->addNodeGraph(name);
        return name;
    };
    EXPECT_EQ(take(), "graph");
    EXPECT_EQ(take(), "graph2");
    document->addNodeGraph("graph4");
    EXPECT_EQ(take(), "graph3");
    EXPECT_EQ(take(), "graph5");
}

class Nodes : public ::testing::Test
{
  protected:
    mx::DocumentPtr _document = mx::createDocument();
    mx::NodeGraphPtr _graph = addNodeGraph(_document, "graph");
    mx::InputPtr _published = _graph->addInput("published", "color3");
    mx::NodePtr _sibling = addConstantFloat(_graph, "sibling", 0.25f);
};

/// Inputs read the source by its kind, and have the type of the first one.
TEST_F(Nodes, FollowTheirSources)
{
    const mx::NodePtr plain = addNode(_graph, "image", "node", "color3");
    connectInput(addInput(plain, "a", "color3"), _sibling);
    connectInput(addInput(plain, "b", "vector3"), _published);
    const std::pair<mx::NodePtr, Lines> cases[] = {
        {plain, {"image color3", "a color3 nodename=sibling", "b vector3 interfacename=published"}},
        {_sibling, {"constant float", "value float value=0.25"}},
        {addExtract(_graph, "a", _published, 2),
         {"extract float", "in color3 interfacename=published", "index integer value=2"}},
        {addExtract(_graph, "b", nullptr, 0),
         {"extract float", "in float", "index integer value=0"}},
        {addSwitch(_graph, "c", _sibling, _published, 7),
         {"switch float", "in1 float nodename=sibling", "in2 float interfacename=published",
          "which integer value=7"}},
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
    texture.unit = 4;
    float next = 1;
    for (float TextureInfo::* const field :
         {&TextureInfo::realWorldOffsetU, &TextureInfo::realWorldOffsetV,
          &TextureInfo::realWorldScaleU, &TextureInfo::realWorldScaleV, &TextureInfo::uvOffsetU,
          &TextureInfo::uvOffsetV, &TextureInfo::uvScaleU, &TextureInfo::uvScaleV,
          &TextureInfo::rotation})
        texture.*field = next++;
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
