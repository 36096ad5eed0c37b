#include <string>
#include <tuple>

#include "graph/NodeLines.h"
#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

using graphtests::Lines;
using graphtests::linesOf;

class BitmapNode : public HostTest
{
  protected:
    /// The node that a bitmap on the diffuse colour becomes.
    mx::NodePtr nodeOf(AssetBuilder& bitmap)
    {
        bitmap.text("VersionGUID", "UnifiedBitmapSchema").uri("unifiedbitmap_Bitmap", _image);
        _translation = translate(AssetBuilder().connect("generic_diffuse", bitmap.build()).build());
        EXPECT_TRUE(isSound(_translation.document));
        const mx::NodeGraphPtr graph = _translation.document->getNodeGraph("M_nodegraph");
        return graph ? graph->getNode("generic_diffuse") : nullptr;
    }

    const std::string _image = TemporaryFolder::utf8(_folder.write("wood.png", ""));
    Translation _translation;
};

TEST_F(BitmapNode, HasAllItsInputsInOrder)
{
    const std::string file = "file filename value=" + _image + " colorspace=srgb_texture";
    AssetBuilder bare("UnifiedBitmapSchema");
    mx::NodePtr node = nodeOf(bare);
    ASSERT_TRUE(node) << _translation.report();
    EXPECT_EQ(linesOf(node),
              (Lines{"kvor:bitmap color3", file, "realworld_offset vector2 value=0, 0",
                     "realworld_scale vector2 value=1, 1", "uv_offset vector2 value=0, 0",
                     "uv_scale vector2 value=1, 1", "uaddressmode string value=clamp",
                     "vaddressmode string value=clamp", "rotation_angle float value=0",
                     "rgbamount float value=1", "invert boolean value=false"}));
    AssetBuilder full("UnifiedBitmapSchema");
    full.scalar("texture_RealWorldOffsetX", 1.5, 0x2016)
        .scalar("texture_RealWorldOffsetY", -2, 0x2016)
        .scalar("texture_RealWorldScaleX", 300, 0x200E)
        .scalar("texture_RealWorldScaleY", 600, 0x200E)
        .scalar("texture_UOffset", 0.25, 0x2016)
        .scalar("texture_VOffset", 0.5)
        .scalar("texture_UScale", 2)
        .scalar("texture_VScale", 3)
        .boolean("texture_URepeat", true)
        .boolean("texture_VRepeat", false)
        .scalar("texture_WAngle", 45, 0x8002)
        .scalar("unifiedbitmap_RGBAmount", 0.75)
        .boolean("unifiedbitmap_Invert", true);
    node = nodeOf(full);
    ASSERT_TRUE(node);
    EXPECT_EQ(linesOf(node),
              (Lines{"kvor:bitmap color3", file,
                     "realworld_offset vector2 value=1.5, -2 unit=inch unittype=distance",
                     "realworld_scale vector2 value=300, 600 unit=millimeter unittype=distance",
                     "uv_offset vector2 value=0.25, 0.5", "uv_scale vector2 value=2, 3",
                     "uaddressmode string value=periodic", "vaddressmode string value=clamp",
                     "rotation_angle float value=45 unit=degrees unittype=angle",
                     "rgbamount float value=0.75", "invert boolean value=true"}));
    EXPECT_EQ(_translation.count(DiagnosticCode::UnitIgnored), 1u) << "of the offset in UV";
    EXPECT_EQ(_translation.diagnostics.size(), 1u) << _translation.report();
}

/// The unit of X counts for both; a unit that a document cannot state is told of.
TEST_F(BitmapNode, StatesTheUnitOfTheFirstComponent)
{
    constexpr DiagnosticCode none{};
    const std::tuple<std::uint32_t, std::uint32_t, std::string, DiagnosticCode> cases[] = {
        {0x2001, 0, " unit=meter unittype=distance", none},
        {0x2001, 0x2016, " unit=meter unittype=distance", DiagnosticCode::UnitIgnored},
        {0, 0x2016, "", DiagnosticCode::UnitIgnored},
        {0x1001, 0x1002, "", none},
        {0x2005, 0x2005, " unittype=distance", DiagnosticCode::UnitUnknown},
        {0x0007, 0x0007, "", DiagnosticCode::UnitUnknown},
    };
    for (const auto& [x, y, unit, told] : cases)
    {
        AssetBuilder bitmap("UnifiedBitmapSchema");
        bitmap.scalar("texture_RealWorldScaleX", 2, x).scalar("texture_RealWorldScaleY", 3, y);
        const mx::NodePtr node = nodeOf(bitmap);
        ASSERT_TRUE(node);
        EXPECT_EQ(linesOf(node).at(3), "realworld_scale vector2 value=2, 3" + unit);
        EXPECT_EQ(_translation.diagnostics.size(), told == none ? 0u : 1u) << _translation.report();
        EXPECT_EQ(_translation.count(told), told == none ? 0u : 1u) << _translation.report();
    }
}

} // namespace

} // namespace vyr::hosttests
