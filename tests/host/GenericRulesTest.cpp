#include <functional>
#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// Properties in, expected inputs out.
struct RuleCase
{
    const char* label;
    std::function<void(AssetBuilder&)> build;
    std::vector<ExpectedInput> expected;
};

class GenericRules : public HostTest
{
  protected:
    void check(const std::vector<RuleCase>& cases) const
    {
        for (const RuleCase& one : cases)
        {
            AssetBuilder builder;
            one.build(builder);
            const Translation translation = translate(builder.build());
            EXPECT_TRUE(translation.succeeded) << one.label << "\n" << translation.report();
            EXPECT_TRUE(hasInputs(translation.document, "M_shader", one.expected)) << one.label;
            EXPECT_TRUE(isSound(translation.document)) << one.label;
        }
    }
};

TEST_F(GenericRules, Diffuse)
{
    check({
        {"colour",
         [](auto& a) { a.color("generic_diffuse", 0.1, 0.2, 0.3, 0.4); },
         {{"base_color", "0.1, 0.2, 0.3"}, {"base", "1"}, {"opacity", "1, 1, 1"}}},
        {"no colour",
         [](auto& a) { a.boolean("color_by_object", false); },
         {{"base_color", "0, 0, 0"}}},
        {"by object",
         [](auto& a) { a.boolean("color_by_object", true).color("generic_diffuse", 1, 0, 0); },
         {{"base_color", "0.5, 0.5, 0.5"}}},
        {"by object without colour",
         [](auto& a) { a.boolean("color_by_object", true); },
         {{"base_color", "0.5, 0.5, 0.5"}}},
        {"not by object",
         [](auto& a) { a.boolean("color_by_object", false).color("generic_diffuse", 1, 0, 0); },
         {{"base_color", "1, 0, 0"}}},
        {"a fade without texture",
         [](auto& a)
         { a.color("generic_diffuse", 0.1, 0.2, 0.3).scalar("generic_diffuse_image_fade", 0.5); },
         {{"base_color", "0.1, 0.2, 0.3"}}},
    });
}

auto reflecting(double reflectivity)
{
    return [=](AssetBuilder& a) { a.scalar("generic_reflectivity_at_0deg", reflectivity); };
}

auto metal(double reflectivity)
{
    return [=](AssetBuilder& a)
    { a.scalar("generic_reflectivity_at_0deg", reflectivity).boolean("generic_is_metal", true); };
}

std::vector<ExpectedInput> reflection(const char* metalness, const char* specular,
                                      const char* roughness)
{
    return {{"metalness", metalness},
            {"specular", specular},
            {"specular_roughness", roughness},
            {"diffuse_roughness", "0"}};
}

TEST_F(GenericRules, ReflectivityWithoutMetal)
{
    check({
        {"0", reflecting(0), reflection("0", "0", "0.2")},
        {"-0", reflecting(-0.0), reflection("0", "0", "0.2")},
        {"just above 0", reflecting(0.0001), reflection("0", "1", "0.25")},
        {"below 0", reflecting(-0.5), reflection("0", "1", "0.25")},
        {"0.7", reflecting(0.7), reflection("0", "1", "0.25")},
        {"1", reflecting(1), reflection("0", "1", "0.25")},
        {"said not to be metal", [](auto& a)
         { a.scalar("generic_reflectivity_at_0deg", 0.9).boolean("generic_is_metal", false); },
         reflection("0", "1", "0.25")},
        {"metal without reflectivity", [](auto& a) { a.boolean("generic_is_metal", true); },
         reflection("0", "1", "0.2")},
    });
}

TEST_F(GenericRules, ReflectivityOfMetal)
{
    check({
        {"0", metal(0), reflection("0", "0", "0.2")},
        {"just above 0", metal(0.0001), reflection("0", "1", "0.25")},
        {"0.15", metal(0.15), reflection("0", "1", "0.25")},
        {"a little above 0.15", metal(0.1555), reflection("0.01", "1", "0.25")},
        {"0.2875", metal(0.2875), reflection("0.25", "1", "0.25")},
        {"0.425", metal(0.425), reflection("0.5", "1", "0.25")},
        {"a little below 0.7", metal(0.6945), reflection("0.99", "1", "0.25")},
        {"0.7", metal(0.7), reflection("1", "1", "0.15")},
        {"1", metal(1), reflection("1", "1", "0.15")},
        {"above 1", metal(1.5), reflection("1", "1", "0.15")},
        {"below 0", metal(-1), reflection("0", "1", "0.25")},
    });
}

TEST_F(GenericRules, GlossinessOverridesTheRoughnessOfReflectivity)
{
    check({
        {"metal",
         [](auto& a)
         {
             metal(0.9)(a);
             a.scalar("generic_glossiness", 0.3);
         },
         {{"metalness", "1"}, {"specular_roughness", "0.7"}, {"diffuse_roughness", "0.7"}}},
        {"given before reflectivity",
         [](auto& a)
         {
             a.scalar("generic_glossiness", 0.3);
             metal(0.9)(a);
         },
         {{"specular_roughness", "0.7"}, {"diffuse_roughness", "0.7"}}},
    });
}

/// The four properties of transparency; what is negative is left out.
auto transparent(double transparency, double translucency, double index)
{
    return [=](AssetBuilder& a)
    {
        if (transparency >= 0)
            a.scalar("generic_transparency", transparency);
        if (translucency >= 0)
            a.scalar("generic_refraction_translucency_weight", translucency);
        if (index >= 0)
            a.scalar("generic_refraction_index", index);
    };
}

std::vector<ExpectedInput> transmission(const char* transmission, const char* subsurface,
                                        const char* thinWalled, const char* index)
{
    return {{"transmission", transmission},
            {"subsurface", subsurface},
            {"thin_walled", thinWalled},
            {"specular_IOR", index},
            {"transmission_color", "1, 1, 1"}};
}

TEST_F(GenericRules, Transparency)
{
    check({
        {"absent", transparent(-1, 0.2, 1.33), transmission("0", "0", "false", "1.5")},
        {"0", transparent(0, 0.2, 1.33), transmission("0", "0", "false", "1.5")},
        {"just above 0", transparent(0.0001, 0.2, 1.33),
         transmission("0.0001", "0.2", "true", "1.33")},
        {"1", transparent(1, 0.2, 1.33), transmission("1", "0.2", "true", "1.33")},
        {"no translucency", transparent(0.5, -1, 1.33), transmission("0.5", "0", "false", "1.33")},
        {"translucency 0", transparent(0.5, 0, 1.33), transmission("0.5", "0", "false", "1.33")},
        {"translucency just above 0", transparent(0.5, 0.0001, -1),
         transmission("0.5", "0.0001", "true", "1.5")},
        {"no index", transparent(0.5, -1, -1), transmission("0.5", "0", "false", "1.5")},
        {"a fade without texture",
         [](auto& a)
         {
             transparent(0.5, -1, 1.33)(a);
             a.scalar("generic_transparency_image_fade", 1);
         },
         transmission("0.5", "0", "false", "1.33")},
    });
}

auto luminous(double luminance)
{
    return [=](AssetBuilder& a)
    {
        a.scalar("generic_self_illum_luminance", luminance)
            .color("generic_self_illum_filter_map", 0.25, 0.5, 0.75);
    };
}

TEST_F(GenericRules, SelfIllumination)
{
    const char* const filter = "0.25, 0.5, 0.75";
    check({
        {"500", luminous(500), {{"emission", "0.5"}, {"emission_color", filter}}},
        {"0 reads the filter", luminous(0), {{"emission", "0"}, {"emission_color", filter}}},
        {"below 0", luminous(-500), {{"emission", "0"}, {"emission_color", filter}}},
        {"just above 0", luminous(0.001), {{"emission", "1e-06"}, {"emission_color", filter}}},
        {"large", luminous(250000), {{"emission", "250"}, {"emission_color", filter}}},
        {"no filter",
         [](auto& a) { a.scalar("generic_self_illum_luminance", 10); },
         {{"emission", "0.01"}, {"emission_color", "1, 1, 1"}}},
        {"no luminance",
         [](auto& a) { a.color("generic_self_illum_filter_map", 0.25, 0.5, 0.75); },
         {{"emission", "0"}, {"emission_color", "1, 1, 1"}}},
    });
}

TEST_F(GenericRules, PlainCutOutAndBumpChangeNothing)
{
    check({
        {"cut-out",
         [](auto& a) { a.scalar("generic_cutout_opacity", 0.5); },
         {{"opacity", "1, 1, 1"}, {"transmission", "0"}}},
        {"bump",
         [](auto& a) { a.scalar("generic_bump_amount", 2).scalar("generic_bump_map", 1); },
         {{"opacity", "1, 1, 1"}}},
    });
    const Translation bump = translate(AssetBuilder().scalar("generic_bump_amount", 2).build());
    EXPECT_EQ(inputOf(bump.document, "M_shader", "normal"), nullptr);
}

/// The rules work together as they do alone.
TEST_F(GenericRules, OneMaterialWithEverything)
{
    check({{"all",
            [](auto& a)
            {
                a.color("generic_diffuse", 0.25, 0.5, 1);
                metal(0.425)(a);
                a.scalar("generic_glossiness", 0.9);
                transparent(0.75, 0.125, 1.45)(a);
                luminous(2000)(a);
            },
            {{"base", "1"},
             {"metalness", "0.5"},
             {"base_color", "0.25, 0.5, 1"},
             {"specular", "1"},
             {"diffuse_roughness", "0.1"},
             {"specular_roughness", "0.1"},
             {"specular_IOR", "1.45"},
             {"transmission", "0.75"},
             {"subsurface", "0.125"},
             {"emission", "2"},
             {"emission_color", "0.25, 0.5, 0.75"},
             {"thin_walled", "true"}}}});
}

/// An asset of another schema is read through the generic table that it carries, and only so.
TEST_F(GenericRules, OtherSchemasUseTheirGenericTable)
{
    for (const char* schema : {"CeramicSchema", "HardwoodSchema", "MetallicPaintSchema",
                               "SolidGlassSchema", "WaterSchema", "WallPaintSchema"})
    {
        const Translation translation = translate(AssetBuilder(schema)
                                                      .scalar("generic_glossiness", 0.1)
                                                      .generic()
                                                      .color("generic_diffuse", 0.25, 0.5, 0.75)
                                                      .scalar("generic_glossiness", 0.4)
                                                      .build());
        EXPECT_TRUE(translation.succeeded) << schema << "\n" << translation.report();
        EXPECT_TRUE(hasInputs(translation.document, "M_shader", {{"diffuse_roughness", "0.6"}}))
            << schema;
        EXPECT_TRUE(isSound(translation.document)) << schema;
    }
}

/// A Generic asset is read through its own table even when it carries another.
TEST_F(GenericRules, GenericAssetsUseTheirOwnTable)
{
    const Translation translation = translate(AssetBuilder()
                                                  .scalar("generic_glossiness", 0.1)
                                                  .generic()
                                                  .scalar("generic_glossiness", 0.4)
                                                  .build());
    EXPECT_TRUE(hasInputs(translation.document, "M_shader", {{"diffuse_roughness", "0.9"}}));
}

TEST_F(GenericRules, SchemaNamesAreComparedExactly)
{
    for (const char* schema : {"genericschema", "GenericSchema ", "Generic", ""})
    {
        const Translation translation = translate(AssetBuilder(schema).build());
        EXPECT_FALSE(translation.succeeded) << schema;
        translation.first(DiagnosticCode::NoGenericProperties);
    }
}

} // namespace

} // namespace vyr::hosttests
