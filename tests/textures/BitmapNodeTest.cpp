#include <string>
#include <tuple>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// The inputs of a node as a document lists them: "name type value[ colorspace][ unit/unittype]".
std::vector<std::string> inputsOf(const mx::NodePtr& node)
{
    std::vector<std::string> lines;
    for (const mx::InputPtr& input : node->getInputs())
    {
        std::string line =
            input->getName() + " " + input->getType() + " " + input->getValueString();
        if (input->hasColorSpace())
            line += " " + input->getColorSpace();
        if (input->hasUnit() || input->hasUnitType())
            line += " " + input->getUnit() + "/" + input->getUnitType();
        lines.push_back(line);
    }
    return lines;
}

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
    AssetBuilder bitmap("UnifiedBitmapSchema");
    mx::NodePtr node = nodeOf(bitmap);
    ASSERT_TRUE(node) << _translation.report();
    EXPECT_EQ(node->getCategory() + " " + node->getType(), "kvor:bitmap color3");
    const std::string file = "file filename " + _image + " srgb_texture";
    EXPECT_EQ(inputsOf(node),
              (std::vector<std::string>{file, "realworld_offset vector2 0, 0",
                                        "realworld_scale vector2 1, 1", "uv_offset vector2 0, 0",
                                        "uv_scale vector2 1, 1", "uaddressmode string clamp",
                                        "vaddressmode string clamp", "rotation_angle float 0",
                                        "rgbamount float 1", "invert boolean false"}));
    bitmap = AssetBuilder("UnifiedBitmapSchema");
    bitmap.scalar("texture_RealWorldOffsetX", 1.5, 0x2016)
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
    node = nodeOf(bitmap);
    ASSERT_TRUE(node);
    EXPECT_EQ(inputsOf(node),
              (std::vector<std::string>{file, "realworld_offset vector2 1.5, -2 inch/distance",
                                        "realworld_scale vector2 300, 600 millimeter/distance",
                                        "uv_offset vector2 0.25, 0.5", "uv_scale vector2 2, 3",
                                        "uaddressmode string periodic", "vaddressmode string clamp",
                                        "rotation_angle float 45 degrees/angle",
                                        "rgbamount float 0.75", "invert boolean true"}));
    EXPECT_EQ(_translation.count(DiagnosticCode::UnitIgnored), 1u) << "of the offset in UV";
    EXPECT_EQ(_translation.diagnostics.size(), 1u) << _translation.report();
}

/// The unit of X counts for both; a unit that a document cannot state is told of.
TEST_F(BitmapNode, StatesTheUnitOfTheFirstComponent)
{
    constexpr DiagnosticCode none{};
    const std::tuple<std::uint32_t, std::uint32_t, const char*, DiagnosticCode> cases[] = {
        {0x2001, 0, "2, 3 meter/distance", none},
        {0x2001, 0x2016, "2, 3 meter/distance", DiagnosticCode::UnitIgnored},
        {0, 0x2016, "2, 3", DiagnosticCode::UnitIgnored},
        {0x1001, 0x1002, "2, 3", none},
        {0x2005, 0x2005, "2, 3 /distance", DiagnosticCode::UnitUnknown},
        {0x0007, 0x0007, "2, 3", DiagnosticCode::UnitUnknown},
        {0x8002, 0x8002, "2, 3 degrees/angle", none},
    };
    for (const auto& [x, y, expected, told] : cases)
    {
        AssetBuilder bitmap("UnifiedBitmapSchema");
        bitmap.scalar("texture_RealWorldScaleX", 2, x).scalar("texture_RealWorldScaleY", 3, y);
        const mx::NodePtr node = nodeOf(bitmap);
        ASSERT_TRUE(node);
        EXPECT_EQ(inputsOf(node).at(2), std::string("realworld_scale vector2 ") + expected);
        EXPECT_EQ(_translation.diagnostics.size(), told == none ? 0u : 1u) << _translation.report();
        EXPECT_EQ(_translation.count(told), told == none ? 0u : 1u) << _translation.report();
    }
}

TEST_F(BitmapNode, RefusesPropertiesOfTheWrongType)
{
    for (const char* property :
         {"texture_RealWorldOffsetX", "texture_RealWorldOffsetY", "texture_RealWorldScaleX",
          "texture_RealWorldScaleY", "texture_UOffset", "texture_VOffset", "texture_UScale",
          "texture_VScale", "texture_URepeat", "texture_VRepeat", "texture_WAngle",
          "unifiedbitmap_RGBAmount", "unifiedbitmap_Invert"})
    {
        AssetBuilder bitmap("UnifiedBitmapSchema");
        EXPECT_FALSE(nodeOf(bitmap.string(property, "text")));
        EXPECT_FALSE(_translation.succeeded) << property;
        EXPECT_EQ(_translation.first(DiagnosticCode::PropertyType).property,
                  std::string("generic_diffuse/") + property);
        EXPECT_TRUE(_translation.document->getChildren().empty()) << property;
    }
}

} // namespace

} // namespace vyr::hosttests
