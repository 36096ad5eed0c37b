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
const std::vector<ValuePtr> allValues = {nullptr,
                                         scalarValue({0.5}),
                                         scalarValue({}),
                                         integerValue({1}),
                                         integerValue({}),
                                         booleanValue({1}),
                                         booleanValue({}),
                                         colorValue({{0.5, 0.5, 0.5, 1}}),
                                         colorValue({}),
                                         textValue("0.5"),
                                         uriValue("a.png"),
                                         choiceValue({"a"}, {0}),
                                         choiceValue({"a"}, {1, -1, 5}),
                                         choiceValue({}, {0})};

class HostileHost : public HostTest
{
  protected:
    /// A sound document or a reason, but no crash and no call that the interfaces rule out.
    void expectAnEnd(AssetBuilder& builder, int mode = 0) const
    {
        ConverterOptions options = with(&ConverterOptions::colorMode, mode);
        options.roughnessMode = mode;
        const Translation translation = translate(builder.build(), options);
        EXPECT_EQ(translation.succeeded, translation.document->getNode("M") != nullptr);
        EXPECT_TRUE(translation.succeeded || !translation.diagnostics.empty());
        EXPECT_TRUE(isSound(translation.document));
        for (const mx::ElementPtr& element : translation.document->traverseTree())
        {
            const std::string text = element->getAttribute("value");
            EXPECT_EQ(text.find_first_of("ni"), std::string::npos) << text << " is no number";
        }
    }

    /// The material fails for that reason, at that property, and nothing is built.
    void expectRefused(AssetBuilder& builder, DiagnosticCode code, const std::string& property) const
    {
        const Translation translation = translate(builder.build());
        EXPECT_FALSE(translation.succeeded) << property;
        EXPECT_TRUE(translation.document->getChildren().empty()) << property;
        EXPECT_EQ(translation.first(code).property, property);
    }
};

/// A property comes first, so that it is the one that is read of its name.
AssetBuilder& withRest(AssetBuilder& builder)
{
    builder.color("generic_diffuse", 1, 1, 1).scalar("generic_reflectivity_at_0deg", 0.5);
    builder.scalar("generic_transparency", 0.5).scalar("generic_self_illum_luminance", 5);
    return builder.scalar("generic_bump_amount", 1);
}

/// Every property under every type code with a value of every kind, and with connections that are not
/// there, in a material that reads all properties.
TEST_F(HostileHost, EveryLieOfAPropertyTableHasAnEnd)
{
    for (const std::string& property : readProperties)
        for (const std::uint32_t type : {0u, 1u, 2u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 12u, 99u})
        {
            SCOPED_TRACE(property + " as type " + std::to_string(type));
            for (const ValuePtr& value : allValues)
                expectAnEnd(withRest(AssetBuilder().property(property, type, value)));
            for (const bool asNull : {false, true})
            {
                AssetBuilder claiming;
                claiming.property(property, type, nullptr).claimingConnections();
                if (asNull)
                    claiming.connect(property, nullptr);
                expectAnEnd(withRest(claiming));
            }
        }
}

TEST_F(HostileHost, AValueThatItsTypeDoesNotNameIsATypeError)
{
    for (const std::string& property : readProperties)
        if (property != "generic_bump_map") // its plain value is not read
            expectRefused(withRest(AssetBuilder().string(property, "0.5")),
                          DiagnosticCode::PropertyType, property);
    const struct
    {
        const char* property;
        std::uint32_t type;
        std::vector<ValuePtr> values;
    } cases[] = {
        {"generic_glossiness",
         kpa::ePropertyType_Scalar,
         {scalarValue({}), textValue("0.5"), integerValue({1})}},
        {"generic_glossiness", kpa::ePropertyType_Integer, {scalarValue({0.5}), integerValue({1})}},
        {"generic_diffuse", kpa::ePropertyType_Color, {colorValue({}), scalarValue({0.5})}},
        {"color_by_object", kpa::ePropertyType_Boolean, {booleanValue({}), integerValue({1})}},
    };
    for (const auto& [property, type, values] : cases)
        for (const ValuePtr& value : values)
            expectRefused(AssetBuilder().property(property, type, value),
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
            expectRefused(AssetBuilder().scalar(property, number), DiagnosticCode::ValueNotFinite,
                          property);
        expectRefused(AssetBuilder().color("generic_diffuse", 0, 0, number),
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
            expectAnEnd(AssetBuilder().color("generic_diffuse", number, 2, number), mode);
            AssetBuilder all;
            all.color("generic_diffuse", number, number, number).boolean("generic_is_metal", true);
            for (const char* property :
                 {"generic_reflectivity_at_0deg", "generic_glossiness", "generic_transparency",
                  "generic_refraction_index", "generic_self_illum_luminance"})
                all.scalar(property, number);
            expectAnEnd(all, mode);
        }
}

/// Properties without a value, missing names, managers and resolvers: the material is what it is
/// without them.
TEST_F(HostileHost, WhatIsMissingCountsAsAbsent)
{
    AssetBuilder valueless;
    for (const std::string& property : readProperties)
        valueless.property(property, kpa::ePropertyType_Scalar, nullptr);
    const std::string empty = xmlOf(translate(AssetBuilder().build()).document);
    AssetBuilder nameless;
    AssetBuilder undefined;
    for (AssetBuilder* builder :
         {&valueless, &nameless.withoutIdentity(), &undefined.withoutDefinition().generic()})
        EXPECT_EQ(xmlOf(translate(builder->build()).document), empty);
    EXPECT_FALSE(translate(AssetBuilder().withoutDefinition().build()).succeeded);

    for (bool HostSettings::* part : {&HostSettings::hasResolver, &HostSettings::hasManager})
    {
        hostSettings().*part = false;
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
