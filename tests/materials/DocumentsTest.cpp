#include "materials/LyrexAssets.h"

namespace vyr::materialtests
{

namespace
{

/// Assets of each kind that make more than shader and material.
AssetPtr metal()
{
    return lyrexBuilder("LyrexMetalSchema").connect("metal_f0", bitmapAsset("metal.png")).build();
}

AssetPtr stained()
{
    return AssetBuilder("HardwoodSchema")
        .choice("hardwood_tint_enabled", "hardwood_color_choice")
        .color("hardwood_tint_color", 0.5, 0.5, 0.5)
        .generic()
        .connect("generic_diffuse", bitmapAsset("wood.png"))
        .build();
}

class Documents : public HostTest
{
  protected:
    bool add(const AssetPtr& asset, const char* name, bool addLook = false)
    {
        ConverterOptions options = with(&ConverterOptions::addLook, addLook);
        return MaterialXConverter(options).TranslateToMaterialX(*asset, UTF8String(name),
                                                                _document);
    }

    void expectRefused(const AssetPtr& asset, const char* name, bool addLook = false,
                       DiagnosticCode code = DiagnosticCode::NameTaken)
    {
        const std::string before = xmlOf(_document);
        EXPECT_FALSE(add(asset, name, addLook)) << name;
        EXPECT_EQ(xmlOf(_document), before) << "changed by a translation that failed";
        EXPECT_EQ(lastCodes().back(), code);
    }

    mx::DocumentPtr _document = mx::createDocument();
};

TEST_F(Documents, StayAsTheyAreWhenATranslationFails)
{
    for (const bool addLook : {false, true})
        for (AssetPtr (*const make)() : {&metal, &stained})
        {
            _document = mx::createDocument();
            ASSERT_TRUE(add(make(), "M", addLook));
            expectRefused(make(), "M", addLook);
            expectRefused(make(), "M", !addLook);
        }
    // A tint's graph takes a name that a later material may want.
    expectRefused(stained(), "hardWoodTint");
    expectRefused(metal(), "hardWoodTint_nodegraph");
    EXPECT_TRUE(add(metal(), "hardWoodTint"));
    // What is found late, in a texture, is found before anything is added.
    const AssetPtr bad = lyrexBuilder("LyrexLayeredSchema")
                             .connect("surface_albedo", bitmapAsset("a.png"))
                             .connect("layered_normal", AssetBuilder("CheckerSchema").build())
                             .build();
    expectRefused(bad, "Bad", true, DiagnosticCode::UnhandledTextureSchema);
    // The host's own elements are not written into.
    for (const char* name : {"M", "M_shader", "M_inputGraph", "default"})
    {
        _document = mx::createDocument();
        _document->addNodeGraph(name);
        expectRefused(metal(), "M", true);
    }
}

/// The same asset under another name is another material, and both may share a look.
TEST_F(Documents, HoldSeveralMaterials)
{
    const AssetPtr asset = metal();
    ASSERT_TRUE(add(asset, "A"));
    const std::string alone = xmlOf(_document);
    ASSERT_TRUE(add(asset, "B", true));
    ASSERT_TRUE(add(stained(), "Wood", true));
    EXPECT_EQ(
        topLevel(_document),
        (Lines{"kvor:metal A_shader", "surfacematerial A", "nodegraph A_inputGraph",
               "kvor:metal B_shader", "surfacematerial B", "look default", "nodegraph B_inputGraph",
               "standard_surface Wood_shader", "surfacematerial Wood", "nodegraph Wood_nodegraph",
               "nodegraph hardWoodTint_nodegraph"}));
    EXPECT_EQ(inputOf(_document, "B_shader", "metal_f0")->getNodeGraphString(), "B_inputGraph");
    EXPECT_TRUE(isSound(_document));
    Lines assigned;
    for (const mx::MaterialAssignPtr& one : _document->getLook("default")->getMaterialAssigns())
        assigned.push_back(one->getName() + " " + one->getMaterial() + " " + one->getGeom());
    EXPECT_EQ(assigned, (Lines{"material_assign_default B *", "material_assign_Wood Wood *"}));
    while (_document->getChildren().size() > 3)
        _document->removeChild(_document->getChildren().back()->getName());
    EXPECT_EQ(xmlOf(_document), alone) << "the first material was touched";
}

} // namespace

} // namespace vyr::materialtests
