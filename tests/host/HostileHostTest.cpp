#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <kelvor/platform/assets/PropertyType.h>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

using namespace kelvor::platform::assets;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

class HostileHost : public HostTest
{
  protected:
    /// The material fails for that reason, at that property, and nothing is built.
    void expectRefused(const AssetPtr& asset, DiagnosticCode code,
                       const std::string& property) const
    {
        const Translation translation = translate(asset);
        EXPECT_FALSE(translation.succeeded) << property;
        EXPECT_TRUE(translation.document->getChildren().empty()) << property;
        EXPECT_EQ(translation.first(code).property, property);
    }
};

/// Values of every kind, none and empty ones included.
std::vector<ValuePtr> allValues()
{
    return {nullptr,
            scalarValue({0.5}),
            scalarValue({}),
            integerValue({1}),
            integerValue({}),
            booleanValue({true}),
            booleanValue({}),
            colorValue({{0.5, 0.5, 0.5, 1}}),
            colorValue({}),
            textValue("0.5"),
            uriValue("a.png"),
            choiceValue({"a"}, {0}),
            choiceValue({"a"}, {1, -1, 5}),
            choiceValueWithoutTable({0})};
}

const std::vector<std::string> readProperties = {"color_by_object",
                                                 "generic_diffuse",
                                                 "generic_diffuse_image_fade",
                                                 "generic_reflectivity_at_0deg",
                                                 "generic_is_metal",
                                                 "generic_glossiness",
                                                 "generic_transparency",
                                                 "generic_transparency_image_fade",
                                                 "generic_refraction_translucency_weight",
                                                 "generic_refraction_index",
                                                 "generic_cutout_opacity",
                                                 "generic_self_illum_luminance",
                                                 "generic_self_illum_filter_map",
                                                 "generic_bump_amount",
                                                 "generic_bump_map"};

/// Every property under every type code with a value of every kind, in a material that reads all
/// properties: true or a reason, but no crash and no call that the interfaces rule out.
TEST_F(HostileHost, EveryLieOfAPropertyTableHasAnEnd)
{
    for (const std::string& property : readProperties)
        for (const std::uint32_t type : {0u, 1u, 2u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 12u, 99u})
            for (const ValuePtr& value : allValues())
            {
                AssetBuilder builder;
                builder.property(property, type, value)
                    .color("generic_diffuse", 1, 1, 1)
                    .scalar("generic_reflectivity_at_0deg", 0.5)
                    .scalar("generic_transparency", 0.5)
                    .scalar("generic_self_illum_luminance", 5)
                    .scalar("generic_bump_amount", 1);
                const Translation translation = translate(builder.build());
                if (translation.succeeded)
                    EXPECT_TRUE(isSound(translation.document)) << property << " as type " << type;
                else
                    EXPECT_FALSE(translation.diagnostics.empty()) << property;
            }
}

struct LieCase
{
    const char* label;
    const char* property;
    std::uint32_t type;
    ValuePtr value;
};

TEST_F(HostileHost, AValueThatItsTypeDoesNotNameIsATypeError)
{
    const LieCase cases[] = {
        {"no components", "generic_glossiness", ePropertyType_Scalar, scalarValue({})},
        {"a text", "generic_glossiness", ePropertyType_Scalar, textValue("0.5")},
        {"an integer", "generic_glossiness", ePropertyType_Scalar, integerValue({1})},
        {"another code", "generic_glossiness", ePropertyType_Integer, scalarValue({0.5})},
        {"no colours", "generic_diffuse", ePropertyType_Color, colorValue({})},
        {"no components", "color_by_object", ePropertyType_Boolean, booleanValue({})},
    };
    for (const LieCase& one : cases)
    {
        SCOPED_TRACE(std::string(one.property) + ": " + one.label);
        expectRefused(AssetBuilder().property(one.property, one.type, one.value).build(),
                      DiagnosticCode::PropertyType, one.property);
    }
}

TEST_F(HostileHost, APropertyWithoutValueCountsAsAbsent)
{
    AssetBuilder builder;
    for (const std::string& property : readProperties)
        builder.property(property, ePropertyType_Scalar, nullptr);
    const Translation translation = translate(builder.build());
    ASSERT_TRUE(translation.succeeded) << translation.report();
    const Translation empty = translate(AssetBuilder().build());
    EXPECT_EQ(xmlOf(translation.document), xmlOf(empty.document));
}

TEST_F(HostileHost, NumbersThatAreNoneAreRefused)
{
    for (const double number : {nan, infinity, -infinity, 1e39, -1e300})
    {
        SCOPED_TRACE(number);
        for (const char* property :
             {"generic_reflectivity_at_0deg", "generic_glossiness", "generic_transparency",
              "generic_self_illum_luminance", "generic_bump_amount"})
            expectRefused(AssetBuilder().scalar(property, number).build(),
                          DiagnosticCode::ValueNotFinite, property);
        expectRefused(AssetBuilder().color("generic_diffuse", 0, 0, number).build(),
                      DiagnosticCode::ValueNotFinite, "generic_diffuse");
    }
}

/// Numbers at the ends of a float's range are numbers, in every mode and on every road.
TEST_F(HostileHost, NumbersAtTheEndsOfTheRangeStayNumbers)
{
    constexpr double largest = std::numeric_limits<float>::max();
    for (const double number : {largest, -largest, 1e-45, 5e-324, -0.0})
        for (const int mode : {0, 1, 2, 3})
        {
            ConverterOptions options = plainOptions();
            options.colorMode = options.roughnessMode = mode;
            const Translation translation =
                translate(AssetBuilder()
                              .color("generic_diffuse", number, number, number)
                              .scalar("generic_reflectivity_at_0deg", number)
                              .boolean("generic_is_metal", true)
                              .scalar("generic_glossiness", number)
                              .scalar("generic_transparency", number)
                              .scalar("generic_refraction_index", number)
                              .scalar("generic_self_illum_luminance", number)
                              .build(),
                          options);
            if (!translation.succeeded)
            {
                EXPECT_FALSE(translation.diagnostics.empty());
                continue;
            }
            EXPECT_TRUE(isSound(translation.document));
            const std::string text = xmlOf(translation.document);
            for (const char* word : {"nan", "inf"})
                EXPECT_EQ(text.find(std::string("\"") + word), std::string::npos) << text;
        }
}

TEST_F(HostileHost, ConnectionsThatAreNotThereCountAsNone)
{
    for (const Connections claim : {Connections::ClaimedButNone, Connections::ClaimedButNull})
        for (const std::string& property : readProperties)
        {
            const Translation translation = translate(AssetBuilder()
                                                          .scalar("generic_transparency", 0.5)
                                                          .scalar("generic_self_illum_luminance", 5)
                                                          .scalar("generic_bump_amount", 1)
                                                          .property(property, 9, nullptr)
                                                          .claiming(claim)
                                                          .build());
            if (translation.succeeded)
                EXPECT_TRUE(isSound(translation.document)) << property;
            else
                EXPECT_FALSE(translation.diagnostics.empty()) << property;
        }
    const Translation diffuse = translate(AssetBuilder()
                                              .color("generic_diffuse", 0.25, 0.5, 0.75)
                                              .claiming(Connections::ClaimedButNull)
                                              .build());
    ASSERT_TRUE(diffuse.succeeded) << diffuse.report();
    EXPECT_TRUE(hasInputs(diffuse.document, "M_shader", {{"base_color", "0.25, 0.5, 0.75"}}));
}

TEST_F(HostileHost, AnAssetNeedsNeitherIdentityNorDefinition)
{
    EXPECT_TRUE(translate(AssetBuilder().withoutIdentity().build()).succeeded);
    const Translation translation = translate(AssetBuilder().withoutDefinition().build());
    EXPECT_FALSE(translation.succeeded);
    translation.first(DiagnosticCode::NoGenericProperties);
    EXPECT_TRUE(translate(AssetBuilder().withoutDefinition().generic().build()).succeeded);
}

TEST_F(HostileHost, TheFirstOfSeveralPropertiesOfOneNameIsRead)
{
    const Translation translation = translate(AssetBuilder()
                                                  .scalar("generic_glossiness", 0.25)
                                                  .scalar("generic_glossiness", 0.75)
                                                  .build());
    ASSERT_TRUE(translation.succeeded);
    EXPECT_TRUE(hasInputs(translation.document, "M_shader", {{"specular_roughness", "0.75"}}));
}

TEST_F(HostileHost, FurtherComponentsAreNotRead)
{
    const Translation translation =
        translate(AssetBuilder().scalars("generic_glossiness", {0.25, nan, infinity}).build());
    ASSERT_TRUE(translation.succeeded) << translation.report();
    EXPECT_TRUE(hasInputs(translation.document, "M_shader", {{"specular_roughness", "0.75"}}));
}

TEST_F(HostileHost, WorksWithoutManagerOrResolver)
{
    for (const LibraryPresence presence : {LibraryPresence::NoResolver, LibraryPresence::NoManager})
    {
        setLibraryPresence(presence);
        EXPECT_TRUE(translate(AssetBuilder()
                                  .color("generic_diffuse", 1, 1, 1)
                                  .connect("generic_diffuse", bitmapAsset("wood.png"))
                                  .build())
                        .succeeded);
    }
}

} // namespace

} // namespace vyr::hosttests
