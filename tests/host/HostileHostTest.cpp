#include <functional>
#include <limits>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<float>::max();

const std::vector<std::string> readProperties = words(
    "color_by_object generic_diffuse generic_diffuse_image_fade generic_reflectivity_at_0deg "
    "generic_is_metal generic_glossiness generic_transparency generic_transparency_image_fade "
    "generic_refraction_translucency_weight generic_refraction_index generic_cutout_opacity "
    "generic_self_illum_luminance generic_self_illum_filter_map generic_bump_amount "
    "generic_bump_map");
const std::vector<std::string> scalars = words(
    "generic_reflectivity_at_0deg generic_glossiness generic_transparency generic_refraction_index "
    "generic_self_illum_luminance generic_bump_amount");

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
    void expectRefused(AssetBuilder& builder, DiagnosticCode code,
                       const std::string& property) const
    {
        const Translation translation = translate(builder.build());
        EXPECT_FALSE(translation.succeeded) << property;
        EXPECT_TRUE(translation.document->getChildren().empty()) << property;
        EXPECT_EQ(translation.first(code).property, property);
    }
};

/// Adds what makes the rules read all properties. Of one name the first is read.
AssetBuilder& withRest(AssetBuilder& builder)
{
    builder.color("generic_diffuse", 1, 0, 0).color("generic_self_illum_filter_map", 1, 1, 0);
    for (const std::string& property : scalars)
        builder.scalar(property, 0.5);
    return builder.boolean("generic_is_metal", true);
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
    const std::tuple<const char*, std::uint32_t, std::vector<ValuePtr>> cases[] = {
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
        for (const std::string& property : scalars)
            expectRefused(withRest(AssetBuilder().scalar(property, number)),
                          DiagnosticCode::ValueNotFinite, property);
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
            for (const std::string& property : scalars)
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

class References : public HostTest
{
  protected:
    static AssetPtr textured()
    {
        AssetBuilder builder;
        withRest(builder);
        for (const std::string& property :
             words("generic_diffuse generic_reflectivity_at_0deg generic_glossiness "
                   "generic_cutout_opacity generic_self_illum_filter_map generic_bump_map"))
            builder.connect(property, bitmapAsset("wood.png"));
        return builder.build();
    }

    /// Runs `operation` again and again, each time letting the next of the host's operations throw,
    /// until one run meets no failure. Every failure must reach the caller, be told of, leave nothing
    /// registered and give every reference back.
    static void failEverywhere(const std::function<void()>& operation,
                               const std::function<void()>& afterFailure)
    {
        const std::size_t before = liveAssets();
        for (std::size_t operations = 0; operations < 5000; ++operations)
        {
            failAfter(operations);
            try
            {
                operation();
                ASSERT_TRUE(cancelFailure()) << "failure " << operations << " was swallowed";
                return;
            }
            catch (const HostFault& fault)
            {
                EXPECT_TRUE(!lastCodes().empty() && lastCodes().back() == DiagnosticCode::Exception)
                    << operations << ": " << fault.what() << " is not told of";
            }
            EXPECT_EQ(liveAssets(), before) << operations;
            EXPECT_EQ(registeredAssetCount(), 0u) << operations;
            afterFailure();
        }
        FAIL() << "there is no end";
    }

    static void translateUnderFailures(const AssetPtr& asset, ConverterOptions options,
                                       bool isTextured = false)
    {
        MaterialXConverter converter(options);
        mx::DocumentPtr document;
        failEverywhere(
            [&]
            {
                document = mx::createDocument();
                EXPECT_TRUE(converter.TranslateToMaterialX(*asset, "M", document));
            },
            // Only textures are still read when building has begun.
            [&] { EXPECT_TRUE(isTextured || document->getChildren().empty()); });
        EXPECT_TRUE(isSound(document));
    }
};

TEST_F(References, ComeBackFromATranslationWhateverFails)
{
    for (const char* schema : {"GenericSchema", "HardwoodSchema", "MetallicPaintSchema",
                               "SolidGlassSchema", "WaterSchema"})
    {
        AssetBuilder builder(schema);
        builder.color("hardwood_tint_color", 1, 0, 0).boolean("Hidden", true);
        if (std::string(schema) != "GenericSchema")
            builder.generic();
        translateUnderFailures(withRest(builder.scalar("unread", 1)).build(), plainOptions());
    }
    translateUnderFailures(textured(), plainOptions(), true);
    ::testing::internal::CaptureStdout();
    AssetBuilder told;
    translateUnderFailures(withRest(told).build(), with(&ConverterOptions::verbose, true));
    ::testing::internal::GetCapturedStdout();
}

TEST_F(References, ComeBackFromRegistrationAndDrainingWhateverFails)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    const AssetPtr asset = textured();
    failEverywhere(
        [&]
        {
            StringSink message;
            EXPECT_TRUE(converter.RegisterAssetForConversion(*asset, message));
            EXPECT_TRUE(converter.SerializeRegisteredAssetsForConversion(message, nullptr));
        },
        [] {});
}

TEST_F(References, ComeBackFromALateRefusal)
{
    AssetBuilder refused;
    refused.connect("generic_diffuse", bitmapAsset("wood.png")).string("generic_bump_amount", "1");
    const AssetPtr asset = refused.build();
    EXPECT_FALSE(translate(asset).succeeded);
    EXPECT_EQ(liveAssets(), 2u);
}

} // namespace

} // namespace vyr::hosttests
