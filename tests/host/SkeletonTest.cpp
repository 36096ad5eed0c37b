#include <algorithm>
#include <string>
#include <vector>

#include <MaterialXFormat/XmlIo.h>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

using Lines = std::vector<std::string>;

struct InputCase
{
    const char* name;
    const char* type;
    const char* value;
};

/// What the shader node of a material without any property says, in order.
const InputCase emptyMaterial[] = {
    {"base", "float", "1"},
    {"metalness", "float", "0"},
    {"base_color", "color3", "0, 0, 0"},
    {"specular", "float", "1"},
    {"diffuse_roughness", "float", "0"},
    {"specular_roughness", "float", "0.2"},
    {"specular_IOR", "float", "1.5"},
    {"transmission", "float", "0"},
    {"transmission_color", "color3", "1, 1, 1"},
    {"subsurface", "float", "0"},
    {"coat", "float", "0"},
    {"coat_roughness", "float", "0.1"},
    {"coat_IOR", "float", "1.5"},
    {"emission", "float", "0"},
    {"emission_color", "color3", "1, 1, 1"},
    {"opacity", "color3", "1, 1, 1"},
    {"thin_walled", "boolean", "false"},
};

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

    const auto inputs = document->getNode("M_shader")->getInputs();
    ASSERT_EQ(inputs.size(), std::size(emptyMaterial));
    for (std::size_t i = 0; i < inputs.size(); ++i)
    {
        EXPECT_EQ(inputs[i]->getName(), emptyMaterial[i].name);
        EXPECT_EQ(inputs[i]->getType(), emptyMaterial[i].type) << emptyMaterial[i].name;
        EXPECT_EQ(inputs[i]->getValueString(), emptyMaterial[i].value) << emptyMaterial[i].name;
    }
    EXPECT_TRUE(isSound(document));
    EXPECT_TRUE(translation.diagnostics.empty()) << translation.report();
}

TEST_F(Skeleton, HasALookWhenAskedFor)
{
    ConverterOptions options = plainOptions();
    options.addLook = true;
    const Translation translation = translate(AssetBuilder().build(), options, "Oak");
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

TEST_F(Skeleton, SaysWhereTheMaterialCameFrom)
{
    const Translation translation = translate(AssetBuilder().id("library/oak-7").build());
    const mx::NodePtr material = translation.document->getNode("M");
    EXPECT_STRNE(libraryVersion(), "");
    EXPECT_EQ(material->getAttribute("vyr_converter"), libraryVersion());
    EXPECT_EQ(material->getAttribute("vyr_asset"), "library/oak-7");
}

/// Whether nothing of the broken texts below got through: beside ASCII there is only the character
/// that stands for what cannot be shown (U+FFFD).
bool isClean(std::string text)
{
    const std::string replacement = "\xEF\xBF\xBD";
    for (auto at = text.find(replacement); at != std::string::npos; at = text.find(replacement))
        text.erase(at, replacement.size());
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' || c == '\n'; });
}

/// Such texts make documents that XML readers refuse.
TEST_F(Skeleton, KeepsTextsThatXmlCannotHoldOut)
{
    const char* const texts[] = {"a\x01"
                                 "b",
                                 "a\x1F",
                                 "\x7F",
                                 "a\nb\tc",
                                 "a\xFF\xFE",
                                 "\xC3",
                                 "\xED\xA0\x80",
                                 "\xC0\x80",
                                 "\xEF\xBF\xBF",
                                 "<&\"'>]]>"};
    for (const char* text : texts)
    {
        const AssetPtr asset =
            AssetBuilder().id(text).name(text).description(text).ownName(text).build();
        const Translation translation = translate(asset);
        ASSERT_TRUE(translation.succeeded);
        EXPECT_TRUE(isSound(translation.document));
        EXPECT_TRUE(isClean(xmlOf(translation.document))) << xmlOf(translation.document);
        const std::string written = translation.document->getNode("M")->getAttribute("vyr_asset");
        EXPECT_EQ(translation.count(DiagnosticCode::TextChanged), written == text ? 0u : 1u);
    }
    const Translation marked = translate(AssetBuilder().id("<&\"'>").build());
    EXPECT_EQ(marked.document->getNode("M")->getAttribute("vyr_asset"), "<&\"'>");
    const Translation wide = translate(AssetBuilder().id("\xE6\x9C\xA8").build());
    EXPECT_EQ(wide.document->getNode("M")->getAttribute("vyr_asset"), "\xE6\x9C\xA8");
}

TEST_F(Skeleton, TwoMaterialsShareADocument)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    const auto document = mx::createDocument();
    const AssetPtr oak = AssetBuilder().scalar("generic_glossiness", 0.25).build();
    const AssetPtr ash = AssetBuilder().scalar("generic_glossiness", 0.75).build();
    ASSERT_TRUE(converter.TranslateToMaterialX(*oak, "Oak", document));
    ASSERT_TRUE(converter.TranslateToMaterialX(*ash, "Ash", document));
    EXPECT_EQ(topLevel(document), (Lines{"standard_surface Oak_shader", "surfacematerial Oak",
                                         "standard_surface Ash_shader", "surfacematerial Ash"}));
    EXPECT_TRUE(hasInputs(document, "Oak_shader", {{"specular_roughness", "0.75"}}));
    EXPECT_TRUE(hasInputs(document, "Ash_shader", {{"specular_roughness", "0.25"}}));
    EXPECT_TRUE(isSound(document));
}

struct TakenCase
{
    const char* first;
    const char* second;
    bool addLook;
};

const TakenCase takenCases[] = {
    {"Oak", "Oak", false}, {"Oak", "Oak_shader", false}, {"Oak_shader", "Oak", false},
    {"Oak", "Ash", true},  {"Oak", "Oak", true},
};

/// A taken name is refused before anything is added, or a free one is found: no exception from
/// half-way, and the first material stays as it was.
TEST_F(Skeleton, TakenNamesDoNoHarm)
{
    for (const TakenCase& one : takenCases)
    {
        ConverterOptions options = plainOptions();
        options.addLook = one.addLook;
        MaterialXConverter converter(options);
        const auto document = mx::createDocument();
        const AssetPtr asset = AssetBuilder().build();
        ASSERT_TRUE(converter.TranslateToMaterialX(*asset, one.first, document));
        const std::string before = xmlOf(document);

        const bool succeeded = converter.TranslateToMaterialX(*asset, one.second, document);
        const std::string label = std::string(one.first) + " and " + one.second;
        EXPECT_TRUE(isSound(document)) << label;
        EXPECT_EQ(inputOf(document, one.first, "surfaceshader")->getNodeName(),
                  std::string(one.first) + "_shader");
        if (succeeded)
            continue;
        EXPECT_EQ(xmlOf(document), before) << label;
        ASSERT_FALSE(lastDiagnostics().empty());
        EXPECT_EQ(lastDiagnostics().front().code, DiagnosticCode::NameTaken) << label;
    }
}

TEST_F(Skeleton, ASecondTranslationUnderOneNameIsRefused)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    const auto document = mx::createDocument();
    const AssetPtr asset = AssetBuilder().build();
    ASSERT_TRUE(converter.TranslateToMaterialX(*asset, "Oak", document));
    EXPECT_FALSE(converter.TranslateToMaterialX(*asset, "Oak", document));
    ASSERT_EQ(lastDiagnostics().size(), 1u);
    EXPECT_EQ(lastDiagnostics().front().code, DiagnosticCode::NameTaken);
}

/// The host's own elements count as taken, whatever their kind.
TEST_F(Skeleton, ElementsOfTheHostStayAsTheyAre)
{
    for (const char* name : {"M", "M_shader", "M_nodegraph"})
    {
        ConverterOptions options = plainOptions();
        MaterialXConverter converter(options);
        const auto document = mx::createDocument();
        const mx::NodeGraphPtr graph = document->addNodeGraph(name);
        graph->addNode("constant", "value", "float")->setInputValue("value", 1.0f);
        const mx::DocumentPtr before = document->copy();
        const AssetPtr asset = AssetBuilder()
                                   .color("generic_diffuse", 1, 1, 1)
                                   .connect("generic_diffuse", bitmapAsset("wood.png"))
                                   .build();
        const bool succeeded = converter.TranslateToMaterialX(*asset, "M", document);
        EXPECT_TRUE(*graph == *before->getNodeGraph(name)) << name;
        EXPECT_TRUE(isSound(document)) << name;
        EXPECT_EQ(succeeded, document->getNode("M") != nullptr) << name;
        if (succeeded)
            continue;
        EXPECT_TRUE(*document == *before) << name;
        ASSERT_FALSE(lastDiagnostics().empty());
        EXPECT_EQ(lastDiagnostics().back().code, DiagnosticCode::NameTaken);
    }
}

TEST_F(Skeleton, AMaterialCalledDefaultGetsALookOrAReason)
{
    ConverterOptions options = plainOptions();
    options.addLook = true;
    const Translation translation = translate(AssetBuilder().build(), options, "default");
    if (translation.succeeded)
    {
        EXPECT_TRUE(isSound(translation.document));
        EXPECT_EQ(translation.document->getLooks().size(), 1u);
        return;
    }
    translation.first(DiagnosticCode::NameTaken);
    EXPECT_TRUE(translation.document->getChildren().empty());
}

} // namespace

} // namespace vyr::hosttests
