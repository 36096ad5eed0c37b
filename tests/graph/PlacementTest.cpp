#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "graph/Names.h"
#include "graph/Nodes.h"
#include "graph/Placement.h"
#include "support/Documents.h"

namespace vyr::MaterialTranslation::graph
{

namespace
{

namespace mx = MaterialX;

using Lines = std::vector<std::string>;

TextureInfo placedTexture(std::int32_t unit)
{
    TextureInfo texture;
    texture.path = kelvor::platform::core::string::UTF8String("decal.png");
    texture.realWorldOffsetU = 1;
    texture.realWorldOffsetV = 2;
    texture.realWorldScaleU = 3;
    texture.realWorldScaleV = 4;
    texture.unit = unit;
    texture.uvOffsetU = 5;
    texture.uvOffsetV = 6;
    texture.uvScaleU = 7;
    texture.uvScaleV = 8;
    texture.rotation = 9;
    return texture;
}

/// Each input as "name type value", and what else it states.
Lines inputLines(const mx::NodePtr& node)
{
    Lines lines;
    for (const mx::InputPtr& input : node->getInputs())
    {
        std::string line =
            input->getName() + " " + input->getType() + " " + input->getValueString();
        for (const char* attribute : {"colorspace", "unit", "unittype"})
            if (input->hasAttribute(attribute))
                line += " " + input->getAttribute(attribute);
        lines.push_back(line);
    }
    return lines;
}

Lines expectedLines(const std::string& colorSpace, const std::string& unit, const std::string& mode)
{
    return {"file filename decal.png " + colorSpace,
            "realworld_offset vector2 1, 2 " + unit + " distance",
            "realworld_scale vector2 3, 4 " + unit + " distance",
            "uv_offset vector2 5, 6",
            "uv_scale vector2 7, 8",
            "rotation_angle float 9",
            "uaddressmode string " + mode,
            "vaddressmode string " + mode};
}

struct UnitCase
{
    std::int32_t index;
    const char* name;
};

const UnitCase unitCases[] = {
    {0, "nanometer"},
    {1, "micron"},
    {2, "millimeter"},
    {3, "centimeter"},
    {4, "inch"},
    {5, "foot"},
    {6, "yard"},
    {7, "meter"},
    {8, "kilometer"},
    {9, "mile"},
    {10, "centimeter"},
    {-1, "centimeter"},
    {2147483647, "centimeter"},
};

TEST(Placement, OfDecalsAndThreads)
{
    const mx::DocumentPtr document = mx::createDocument();
    const mx::NodeGraphPtr graph = addNodeGraph(document, "graph");
    for (const UnitCase& one : unitCases)
    {
        const TextureInfo texture = placedTexture(one.index);
        const mx::NodePtr decal =
            addPlacedTextureNode(graph, freeName(graph, "decal"), texture, "color4");
        EXPECT_EQ(decal->getCategory() + " " + decal->getType(), "kvor:bitmap color4");
        EXPECT_EQ(inputLines(decal), expectedLines("srgb_texture", one.name, "clamp"));

        for (const bool linear : {false, true})
        {
            const mx::NodePtr thread = addPlacedTextureNode(
                graph, "kvor:normal_map", freeName(graph, "thread"), texture, "vector3", linear);
            EXPECT_EQ(thread->getCategory() + " " + thread->getType(), "kvor:normal_map vector3");
            EXPECT_EQ(inputLines(thread),
                      expectedLines(linear ? "lin_rec709" : "srgb_texture", one.name, "periodic"));
        }
    }
    EXPECT_TRUE(support::isSound(document));
}

} // namespace

} // namespace vyr::MaterialTranslation::graph
