#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// A textured property, the shader input that it drives, and what else makes the rule look at it.
struct TexturedCase
{
    const char* property;
    const char* input;
    void (*prepare)(AssetBuilder&);
};

const TexturedCase texturedCases[] = {
    {"generic_diffuse", "base_color", [](AssetBuilder& a) { a.color("generic_diffuse", 1, 0, 0); }},
    {"generic_reflectivity_at_0deg", "specular", [](AssetBuilder&) {}},
    {"generic_glossiness", "specular_roughness", [](AssetBuilder&) {}},
    {"generic_transparency", "transmission",
     [](AssetBuilder& a) { a.scalar("generic_transparency_image_fade", 1); }},
    {"generic_refraction_translucency_weight", "transmission_color",
     [](AssetBuilder& a) { a.scalar("generic_transparency", 0.5); }},
    {"generic_cutout_opacity", "opacity", [](AssetBuilder&) {}},
    {"generic_self_illum_filter_map", "emission_color",
     [](AssetBuilder& a) { a.scalar("generic_self_illum_luminance", 100); }},
    {"generic_bump_map", "normal", [](AssetBuilder& a) { a.scalar("generic_bump_amount", 1); }},
};

class TexturedInputs : public HostTest
{
  protected:
    static AssetPtr textured(const TexturedCase& one, const AssetPtr& texture)
    {
        AssetBuilder builder;
        one.prepare(builder);
        return builder.connect(one.property, texture).build();
    }

    static std::size_t warnings(const Translation& translation)
    {
        std::size_t count = 0;
        for (const Diagnostic& diagnostic : translation.diagnostics)
            count += diagnostic.severity == Severity::Warning;
        return count;
    }
};

/// A texture shows in the document, or the shader has its plain value and a warning tells of it.
TEST_F(TexturedInputs, AreConnectedOrToldAbout)
{
    const AssetPtr bitmap = bitmapAsset((_folder / "wood.png").string());
    const AssetPtr empty = bitmapAsset("");
    const AssetPtr bare = AssetBuilder("UnifiedBitmapSchema").build();
    const AssetPtr checker = AssetBuilder("CheckerSchema").build();
    for (const TexturedCase& one : texturedCases)
        for (const AssetPtr* texture : {&bitmap, &empty, &bare, &checker})
        {
            const Translation translation = translate(textured(one, *texture));
            EXPECT_TRUE(translation.succeeded) << one.property << "\n" << translation.report();
            const mx::InputPtr input = inputOf(translation.document, "M_shader", one.input);
            if (isConnected(input))
                EXPECT_FALSE(input->hasValueString()) << one.input;
            else
                EXPECT_GT(warnings(translation), 0u) << one.property;
            if (std::string(one.input) != "normal")
                EXPECT_NE(input, nullptr) << one.input;
            else
                EXPECT_TRUE(!input || isConnected(input)) << "normal is never a plain value";
            EXPECT_TRUE(isSound(translation.document)) << one.property;
        }
}

TEST_F(TexturedInputs, ThatCameToNothingLeaveNoEmptyGraph)
{
    for (const TexturedCase& one : texturedCases)
    {
        const Translation translation =
            translate(textured(one, AssetBuilder("CheckerSchema").build()));
        for (const mx::NodeGraphPtr& graph : translation.document->getNodeGraphs())
            EXPECT_FALSE(graph->getNodes().empty()) << one.property;
    }
}

/// What a texture takes the place of is not read, and what it does not is.
TEST_F(TexturedInputs, LeaveTheOtherRulesAlone)
{
    const AssetPtr bitmap = bitmapAsset((_folder / "wood.png").string());
    const Translation reflectivity = translate(AssetBuilder()
                                                   .scalar("generic_reflectivity_at_0deg", 0.9)
                                                   .connect("generic_reflectivity_at_0deg", bitmap)
                                                   .boolean("generic_is_metal", true)
                                                   .build());
    EXPECT_TRUE(hasInputs(reflectivity.document, "M_shader",
                          {{"metalness", "0"}, {"specular_roughness", "0.2"}}));

    const Translation glossiness = translate(AssetBuilder()
                                                 .scalar("generic_reflectivity_at_0deg", 0.5)
                                                 .scalar("generic_glossiness", 0.9)
                                                 .connect("generic_glossiness", bitmap)
                                                 .build());
    EXPECT_TRUE(hasInputs(glossiness.document, "M_shader", {{"diffuse_roughness", "0"}}));

    const Translation transparency = translate(AssetBuilder()
                                                   .scalar("generic_transparency", 0)
                                                   .connect("generic_transparency", bitmap)
                                                   .scalar("generic_transparency_image_fade", 0.5)
                                                   .scalar("generic_refraction_index", 1.33)
                                                   .build());
    EXPECT_TRUE(hasInputs(transparency.document, "M_shader", {{"specular_IOR", "1.33"}}))
        << "a textured transparency is in use";

    const Translation translucency =
        translate(AssetBuilder()
                      .scalar("generic_transparency", 0.5)
                      .scalar("generic_refraction_translucency_weight", 0)
                      .connect("generic_refraction_translucency_weight", bitmap)
                      .build());
    EXPECT_TRUE(hasInputs(translucency.document, "M_shader",
                          {{"thin_walled", "true"}, {"subsurface", "0"}}));
}

/// A fade of 0 shows the plain value alone.
TEST_F(TexturedInputs, OfFadeZeroAreNotTextured)
{
    const AssetPtr bitmap = bitmapAsset((_folder / "wood.png").string());
    for (const double fade : {0.0, -1.0})
    {
        const Translation translation =
            translate(AssetBuilder()
                          .color("generic_diffuse", 0.25, 0.5, 0.75)
                          .connect("generic_diffuse", bitmap)
                          .scalar("generic_diffuse_image_fade", fade)
                          .scalar("generic_transparency", 0.125)
                          .connect("generic_transparency", bitmap)
                          .scalar("generic_transparency_image_fade", fade)
                          .build());
        EXPECT_TRUE(hasInputs(translation.document, "M_shader",
                              {{"base_color", "0.25, 0.5, 0.75"}, {"transmission", "0.125"}}));
        EXPECT_TRUE(translation.document->getNodeGraphs().empty());
    }
}

/// A texture on a Boolean has no meaning.
TEST_F(TexturedInputs, OnABooleanGiveThePlainValueAndAWarning)
{
    const AssetPtr bitmap = bitmapAsset((_folder / "wood.png").string());
    const Translation translation = translate(
        AssetBuilder().boolean("color_by_object", true).connect("color_by_object", bitmap).build());
    ASSERT_TRUE(translation.succeeded);
    EXPECT_TRUE(hasInputs(translation.document, "M_shader", {{"base_color", "0.5, 0.5, 0.5"}}));
    EXPECT_GT(warnings(translation), 0u) << translation.report();
}

/// A bump texture counts by its schema, and only with an amount.
TEST_F(TexturedInputs, OfBumpNeedTheirAmount)
{
    const AssetPtr bitmap = bitmapAsset((_folder / "wood.png").string());
    const Translation translation =
        translate(AssetBuilder().connect("generic_bump_map", bitmap).build());
    ASSERT_TRUE(translation.succeeded);
    EXPECT_EQ(inputOf(translation.document, "M_shader", "normal"), nullptr);
    EXPECT_TRUE(translation.document->getNodeGraphs().empty());
    EXPECT_GT(warnings(translation), 0u) << "the asset says what the document does not";
}

} // namespace

} // namespace vyr::hosttests
