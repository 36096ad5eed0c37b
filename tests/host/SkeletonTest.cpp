#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

using Lines = std::vector<std::string>;
using Skeleton = HostTest;

TEST_F(Skeleton, OfAnEmptyMaterialHoldsTheDefaults)
{
    const Translation translation = translate(AssetBuilder().build());
    ASSERT_TRUE(translation.succeeded);
    const mx::DocumentPtr& document = translation.document;
    EXPECT_EQ(topLevel(document), (Lines{"standard_surface M_shader", "surfacematerial M"}));
    EXPECT_EQ(document->getColorSpace(), "lin_rec709");
    EXPECT_EQ(document->getNode("M_shader")->getType(), "surfaceshader");
    EXPECT_EQ(inputOf(document, "M", "surfaceshader")->getNodeName(), "M_shader");
    Lines inputs;
    for (const mx::InputPtr& input : document->getNode("M_shader")->getInputs())
        inputs.push_back(input->getName() + " " + input->getType() + " " + input->getValueString());
    EXPECT_EQ(inputs,
              (Lines{"base float 1", "metalness float 0", "base_color color3 0, 0, 0",
                     "specular float 1", "diffuse_roughness float 0",
                     "specular_roughness float 0.2", "specular_IOR float 1.5",
                     "transmission float 0", "transmission_color color3 1, 1, 1",
                     "subsurface float 0", "coat float 0", "coat_roughness float 0.1",
                     "coat_IOR float 1.5", "emission float 0", "emission_color color3 1, 1, 1",
                     "opacity color3 1, 1, 1", "thin_walled boolean false"}));
    EXPECT_TRUE(isSound(document));
    EXPECT_TRUE(translation.diagnostics.empty()) << translation.report();
}

TEST_F(Skeleton, HasALookWhenAskedFor)
{
    const Translation translation =
        translate(AssetBuilder().build(), with(&ConverterOptions::addLook, true), "Oak");
    ASSERT_TRUE(translation.succeeded);
    EXPECT_EQ(topLevel(translation.document),
              (Lines{"standard_surface Oak_shader", "surfacematerial Oak", "look default"}));
    const mx::LookPtr look = translation.document->getLook("default");
    ASSERT_EQ(look->getChildren().size(), 1u);
    const auto assignment = look->getMaterialAssign("material_assign_default");
    ASSERT_NE(assignment, nullptr);
    EXPECT_EQ(assignment->getMaterial(), "Oak");
    EXPECT_EQ(assignment->getGeom(), "*");
    EXPECT_TRUE(isSound(translation.document));
}

/// With the library's version and the asset's identifier, the latter without what makes documents
/// that XML readers refuse.
TEST_F(Skeleton, SaysWhereTheMaterialCameFrom)
{
    EXPECT_STRNE(libraryVersion(), "");
    const std::string replaced = "\xEF\xBF\xBD";
    const std::tuple<std::string, std::string> cases[] = {
        {"library/oak-7", "library/oak-7"},
        {"\xE6\x9C\xA8", "\xE6\x9C\xA8"},
        {"<&\"'>]]>", "<&\"'>]]>"},
        {"a\x01z\xC3", "a" + replaced + "z" + replaced},
    };
    for (const auto& [identifier, written] : cases)
    {
        AssetBuilder builder;
        builder.id(identifier).name(identifier).description(identifier).ownName(identifier);
        const Translation translation = translate(builder.build());
        const mx::NodePtr material = translation.document->getNode("M");
        EXPECT_EQ(material->getAttribute("vyr_converter"), libraryVersion());
        EXPECT_EQ(material->getAttribute("vyr_asset"), written);
        EXPECT_EQ(translation.count(DiagnosticCode::TextChanged), identifier == written ? 0u : 1u);
        EXPECT_TRUE(isSound(translation.document)) << written;
    }
}

/// A taken name is refused before anything is added, or a free one is found: no exception from
/// half-way, and the first material stays as it was.
TEST_F(Skeleton, TakenNamesDoNoHarm)
{
    const std::tuple<const char*, const char*, bool, bool> cases[] = {
        {"Oak", "Oak", false, true},        {"Oak", "Oak_shader", false, true},
        {"Oak_shader", "Oak", false, true}, {"Oak", "Ash", true, false},
        {"Oak", "Ash", false, false},       {"Oak", "Oak", true, true},
        {"Oak", "default", true, true},
    };
    for (const auto& [first, second, addLook, refused] : cases)
    {
        SCOPED_TRACE(std::string(first) + " and " + second);
        ConverterOptions options = with(&ConverterOptions::addLook, addLook);
        MaterialXConverter converter(options);
        const auto document = mx::createDocument();
        const AssetPtr asset = AssetBuilder().build();
        ASSERT_TRUE(converter.TranslateToMaterialX(*asset, first, document));
        const std::string before = xmlOf(document);
        EXPECT_EQ(converter.TranslateToMaterialX(*asset, second, document), !refused);
        EXPECT_TRUE(isSound(document));
        EXPECT_EQ(inputOf(document, first, "surfaceshader")->getNodeName(),
                  std::string(first) + "_shader");
        if (refused)
        {
            EXPECT_EQ(xmlOf(document), before);
            EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NameTaken});
        }
    }
}

} // namespace

} // namespace vyr::hosttests
