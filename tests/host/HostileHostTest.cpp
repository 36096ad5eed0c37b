#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<float>::max();

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

class HostileHost : public HostTest
{
  protected:
    /// A sound document or a reason, but no crash and no call that the interfaces rule out.
    void expectAnEnd(const AssetPtr& asset, const ConverterOptions& options) const
    {
        const Translation translation = translate(asset, options);
        if (translation.succeeded)
            EXPECT_TRUE(isSound(translation.document));
        else
            EXPECT_FALSE(translation.diagnostics.empty());
        for (const mx::ElementPtr& element : translation.document->traverseTree())
        {
            const std::string text = element->getAttribute("value");
            EXPECT_EQ(text.find_first_of("ni"), std::string::npos) << text << " is no number";
        }
    }

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

/// Every property under every type code with a value of every kind, and with connections that are not
/// there, in a material that reads all properties.
TEST_F(HostileHost, EveryLieOfAPropertyTableHasAnEnd)
{
    const ConverterOptions options = plainOptions();
    for (const std::string& property : readProperties)
        for (const std::uint32_t type : {0u, 1u, 2u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 12u, 99u})
            for (const ValuePtr& value : allValues())
                for (const Connections claim :
                     {Connections::True, Connections::ClaimedButNone, Connections::ClaimedButNull})
                {
                    if (claim != Connections::True && value)
                        continue;
                    SCOPED_TRACE(property + " as type " + std::to_string(type));
                    expectAnEnd(AssetBuilder()
                                    .property(property, type, value)
                                    .claiming(claim)
                                    .color("generic_diffuse", 1, 1, 1)
                                    .scalar("generic_reflectivity_at_0deg", 0.5)
                                    .scalar("generic_transparency", 0.5)
                                    .scalar("generic_self_illum_luminance", 5)
                                    .scalar("generic_bump_amount", 1)
                                    .build(),
                                options);
                }
}

TEST_F(HostileHost, AValueThatItsTypeDoesNotNameIsATypeError)
{
    const struct
    {
        const char* property;
        std::uint32_t type;
        ValuePtr value;
    } cases[] = {
        {"generic_glossiness", kpa::ePropertyType_Scalar, scalarValue({})},
        {"generic_glossiness", kpa::ePropertyType_Scalar, textValue("0.5")},
        {"generic_glossiness", kpa::ePropertyType_Scalar, integerValue({1})},
        {"generic_glossiness", kpa::ePropertyType_Integer, scalarValue({0.5})},
        {"generic_glossiness", kpa::ePropertyType_Integer, integerValue({1})},
        {"generic_diffuse", kpa::ePropertyType_Color, colorValue({})},
        {"color_by_object", kpa::ePropertyType_Boolean, booleanValue({})},
    };
    for (const auto& [property, type, value] : cases)
        expectRefused(AssetBuilder().property(property, type, value).build(),
                      DiagnosticCode::PropertyType, property);
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

/// Numbers at the ends of a float's range stay numbers, in every mode and on every road; so does a
/// power of a negative one, which is none.
TEST_F(HostileHost, NumbersAtTheEndsOfTheRangeStayNumbers)
{
    for (const double number : {largest, -largest, 1e30, -0.5, 1e-45, 5e-324, -0.0})
        for (const int mode : {0, 1, 2, 3})
        {
            ConverterOptions options = with(&ConverterOptions::colorMode, mode);
            options.roughnessMode = mode;
            AssetBuilder color;
            expectAnEnd(color.color("generic_diffuse", number, 2, number).build(), options);
            AssetBuilder all;
            all.color("generic_diffuse", number, number, number).boolean("generic_is_metal", true);
            for (const char* property :
                 {"generic_reflectivity_at_0deg", "generic_glossiness", "generic_transparency",
                  "generic_refraction_index", "generic_self_illum_luminance"})
                all.scalar(property, number);
            expectAnEnd(all.build(), options);
        }
}

/// Properties without a value or with claimed connections, missing names, managers and resolvers: the
/// material is what it is without them.
TEST_F(HostileHost, WhatIsMissingCountsAsAbsent)
{
    AssetBuilder valueless;
    for (const std::string& property : readProperties)
        valueless.property(property, kpa::ePropertyType_Scalar, nullptr);
    const std::string empty = xmlOf(translate(AssetBuilder().build()).document);
    EXPECT_EQ(xmlOf(translate(valueless.build()).document), empty);
    EXPECT_EQ(xmlOf(translate(AssetBuilder().withoutIdentity().build()).document), empty);
    EXPECT_EQ(xmlOf(translate(AssetBuilder().withoutDefinition().generic().build()).document),
              empty);
    EXPECT_FALSE(translate(AssetBuilder().withoutDefinition().build()).succeeded);

    for (const LibraryPresence presence : {LibraryPresence::NoResolver, LibraryPresence::NoManager})
    {
        setLibraryPresence(presence);
        EXPECT_TRUE(
            translate(AssetBuilder().connect("generic_diffuse", bitmapAsset("wood.png")).build())
                .succeeded);
    }
}

/// The first of several properties of one name is read, and of it the first component.
TEST_F(HostileHost, WhatIsTooMuchIsNotRead)
{
    const Translation translation = translate(AssetBuilder()
                                                  .scalars("generic_glossiness", {0.25, nan})
                                                  .scalar("generic_glossiness", 0.75)
                                                  .build());
    EXPECT_TRUE(hasInputs(translation.document, "M_shader", {{"specular_roughness", "0.75"}}));
}

} // namespace

} // namespace vyr::hosttests
