#include <algorithm>

#include "materials/Evaluator.h"
#include "materials/LyrexFamilies.h"

namespace vyr::materialtests
{

namespace
{

/// Assets of each kind that make more than shader and material.
AssetPtr metal()
{
    return lyrexBuilder("LyrexMetalSchema")
        .scalar("surface_roughness", 0.5)
        .connect("metal_f0", bitmapAsset("metal.png"))
        .build();
}

AssetPtr glazing()
{
    return lyrexBuilder("LyrexGlazingSchema")
        .connect("surface_normal", bumpBuilder("normal_map").build())
        .build();
}

AssetPtr stained(double tint)
{
    return AssetBuilder("HardwoodSchema")
        .choice("hardwood_tint_enabled", "hardwood_color_choice")
        .color("hardwood_tint_color", tint, tint, tint)
        .generic()
        .color("generic_diffuse", 1, 1, 1)
        .connect("generic_diffuse", bitmapAsset("wood.png"))
        .build();
}

class Documents : public HostTest
{
  protected:
    bool add(const AssetPtr& asset, const char* name, bool addLook = false)
    {
        ConverterOptions options = plainOptions();
        options.addLook = addLook;
        MaterialXConverter converter(options);
        return converter.TranslateToMaterialX(*asset, UTF8String(name), _document);
    }

    void expectRefused(const AssetPtr& asset, const char* name, bool addLook = false)
    {
        const std::string before = xmlOf(_document);
        EXPECT_FALSE(add(asset, name, addLook)) << name;
        EXPECT_EQ(xmlOf(_document), before) << "changed by a translation that failed";
        const std::vector<DiagnosticCode> codes = lastCodes();
        EXPECT_EQ(std::count(codes.begin(), codes.end(), DiagnosticCode::NameTaken), 1);
    }

    mx::DocumentPtr _document = mx::createDocument();
};

TEST_F(Documents, RefuseNamesThatAreTaken)
{
    for (const bool addLook : {false, true})
        for (AssetPtr (*make)() :
             {+[] { return metal(); }, +[] { return glazing(); }, +[] { return stained(0.5); }})
        {
            _document = mx::createDocument();
            ASSERT_TRUE(add(make(), "M", addLook));
            expectRefused(make(), "M", addLook);
            expectRefused(make(), "M", !addLook);
        }
    // A tint's graph takes a name that a later material may want.
    expectRefused(stained(0.5), "hardWoodTint");
    expectRefused(metal(), "hardWoodTint_nodegraph");
    EXPECT_TRUE(add(metal(), "hardWoodTint"));
    // The host's own elements are not written into.
    for (const char* name : {"M", "M_shader", "M_inputGraph", "default"})
    {
        _document = mx::createDocument();
        _document->addNodeGraph(name);
        expectRefused(metal(), "M", true);
    }
}

/// The same asset under another name is another material.
TEST_F(Documents, TakeTheSameAssetUnderAnotherName)
{
    const AssetPtr asset = metal();
    ASSERT_TRUE(add(asset, "A"));
    const std::string alone = xmlOf(_document);
    ASSERT_TRUE(add(asset, "B"));
    EXPECT_EQ(topLevel(_document),
              (Lines{"kvor:metal A_shader", "surfacematerial A", "nodegraph A_inputGraph",
                     "kvor:metal B_shader", "surfacematerial B", "nodegraph B_inputGraph"}));
    EXPECT_EQ(inputOf(_document, "B_shader", "metal_f0")->getNodeGraphString(), "B_inputGraph");
    EXPECT_TRUE(isSound(_document));
    for (const char* name : {"B_shader", "B", "B_inputGraph"})
        _document->removeChild(name);
    EXPECT_EQ(xmlOf(_document), alone) << "the first material was touched";
}

TEST_F(Documents, ShareOneLook)
{
    ASSERT_TRUE(add(metal(), "Metal", true));
    ASSERT_TRUE(add(glazing(), "Pane"));
    ASSERT_TRUE(add(stained(0.5), "Wood", true));
    const mx::LookPtr look = _document->getLook("default");
    ASSERT_NE(look, nullptr);
    Lines assigned;
    for (const mx::MaterialAssignPtr& one : look->getMaterialAssigns())
        assigned.push_back(one->getName() + " " + one->getMaterial() + " " + one->getGeom());
    EXPECT_EQ(assigned, (Lines{"material_assign_default Metal *", "material_assign_Wood Wood *"}));
    EXPECT_EQ(_document->getLooks().size(), 1u);
    EXPECT_TRUE(isSound(_document));
}

/// Stained woods, each with its own stain, even when a material's own graph is called as tints are.
TEST_F(Documents, HoldSeveralTints)
{
    ASSERT_TRUE(add(stained(1.0), "hardWoodTint"));
    ASSERT_TRUE(add(stained(0.75), "Dark"));
    ASSERT_TRUE(add(stained(0.25), "Light"));
    const Evaluator evaluate({0.25, 0.25, 0.25});
    const auto result = [&](const char* shader)
    { return evaluate(inputOf(_document, shader, "base_color"))[0]; };
    // (s + 2 s t)(1 + t) / 4
    EXPECT_NEAR(result("hardWoodTint_shader"), 0.375, 1e-12);
    EXPECT_NEAR(result("Dark_shader"), 0.2734375, 1e-12);
    EXPECT_NEAR(result("Light_shader"), 0.1171875, 1e-12);
    EXPECT_EQ(_document->getNodeGraphs().size(), 6u);
    EXPECT_TRUE(isSound(_document));
}

/// A failure late in a document of several materials leaves the others alone.
TEST_F(Documents, StayAsTheyWereAfterAFailure)
{
    ASSERT_TRUE(add(metal(), "Metal", true));
    const std::string before = xmlOf(_document);
    const AssetPtr bad = lyrexBuilder("LyrexLayeredSchema")
                             .connect("surface_albedo", bitmapAsset("a.png"))
                             .scalar("layered_fraction", 0.5)
                             .connect("layered_normal", AssetBuilder("CheckerSchema").build())
                             .build();
    EXPECT_FALSE(add(bad, "Bad", true));
    EXPECT_EQ(xmlOf(_document), before);
    EXPECT_EQ(lastCodes().back(), DiagnosticCode::UnhandledTextureSchema);
}

} // namespace

} // namespace vyr::materialtests
