#include <functional>
#include <limits>

#if defined(__linux__)
#include <sys/stat.h>
#endif

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<float>::max();

const Names numbers = {"generic_reflectivity_at_0deg", "generic_glossiness",
                       "generic_transparency",         "generic_refraction_index",
                       "generic_self_illum_luminance", "generic_bump_amount"};

/// A material that makes the rules read all properties, with donors of values of every kind.
const std::string everything = R"(
    "generic_reflectivity_at_0deg": 0.5, "generic_glossiness": 0.5, "generic_transparency": 0.5,
    "generic_refraction_index": 0.5, "generic_self_illum_luminance": 0.5, "generic_bump_amount": 0.5,
    "color_by_object": false, "generic_diffuse": [1, 0, 0], "generic_diffuse_image_fade": 1,
    "generic_is_metal": true, "generic_transparency_image_fade": 1,
    "generic_refraction_translucency_weight": 0.5, "generic_cutout_opacity": 0.5,
    "generic_self_illum_filter_map": [1, 1, 0], "generic_bump_map": 1,
    "scalar": 0.5, "integer": {"type": "integer", "value": 1}, "boolean": true, "color": [0.5, 0.5, 0.5],
    "text": {"type": "text", "value": "0.5"}, "uri": {"type": "uri", "value": "a.png"},
    "choice": {"type": "choice", "value": "a"})";

const std::string images = textured("generic_diffuse", "wood.png") + "," +
                           textured("generic_glossiness", "wood.png") + "," +
                           textured("generic_cutout_opacity", "wood.png") + "," +
                           textured("generic_self_illum_filter_map", "wood.png") + "," +
                           textured("generic_bump_map", "wood.png") +
                           R"(, "generic_bump_amount": 1, "generic_self_illum_luminance": 5)";

Behaviour lying(const std::string& property, Lie lie)
{
    return {.lies = {{property, std::move(lie)}}};
}

class HostileHost : public HostTest
{
  protected:
    /// A sound document or a reason, but no crash and no call that the interfaces rule out.
    void expectAnEnd(const AssetPtr& asset, int mode = 0) const
    {
        ConverterOptions options = with(&ConverterOptions::colorMode, mode);
        options.roughnessMode = mode;
        const Translation translation = translate(asset, options);
        EXPECT_EQ(translation.succeeded, translation.document->getNode("M") != nullptr);
        EXPECT_TRUE(translation.succeeded || !translation.diagnostics.empty());
        EXPECT_TRUE(isSound(translation.document));
        for (const mx::ElementPtr& element : translation.document->traverseTree())
        {
            const std::string text = element->getAttribute("value");
            EXPECT_EQ(text.find_first_of("ni"), std::string::npos) << text << " is no number";
        }
    }

    /// The material fails for that reason alone, at that property, and nothing is built.
    void expectRefused(const AssetPtr& asset, DiagnosticCode code,
                       const std::string& property) const
    {
        const Translation translation = translate(asset);
        EXPECT_FALSE(translation.succeeded) << property;
        EXPECT_TRUE(translation.document->getChildren().empty()) << property;
        ASSERT_FALSE(translation.diagnostics.empty()) << property;
        EXPECT_EQ(translation.diagnostics.back().code, code) << translation.report();
        EXPECT_EQ(translation.diagnostics.back().property, property);
    }
};

/// Every property under every type code with a value of every kind, and with connections that are not
/// there, in a material that reads all properties.
TEST_F(HostileHost, EveryLieOfAPropertyTableHasAnEnd)
{
    std::vector<Lie> lies = {{.valueOf = ""},
                             {.valueOf = "choice", .selectsOutside = true},
                             {.valueOf = "choice", .hasNoChoices = true},
                             {.valueOf = "", .claimsConnections = true},
                             {.valueOf = "", .connectsNull = true}};
    for (const char* donor : {"scalar", "integer", "boolean", "color", "text", "uri", "choice"})
        for (const bool isEmpty : {false, true})
            lies.push_back({.valueOf = donor, .isEmpty = isEmpty});
    const AssetPtr honest = generic(everything);
    for (std::size_t i = 0; i < honest->GetPropertyCount(); ++i)
    {
        UTF8String property;
        honest->GetProperty(i)->GetIdentifier(property);
        for (const std::uint32_t type : {0u, 2u, 4u, 5u, 6u, 7u, 8u, 9u, 10u, 11u, 12u, 99u})
            for (Lie lie : lies)
            {
                SCOPED_TRACE(property.str() + " as type " + std::to_string(type));
                lie.type = type;
                expectAnEnd(generic(everything, lying(property.str(), lie)));
            }
    }
}

TEST_F(HostileHost, AValueThatIsNotWhatItsTypePromisesIsATypeError)
{
    const std::tuple<const char*, Lie> cases[] = {
        {"generic_glossiness", {.isEmpty = true}},      {"generic_glossiness", {.valueOf = "text"}},
        {"generic_glossiness", {.valueOf = "integer"}}, {"generic_glossiness", {.type = 6}},
        {"generic_diffuse", {.isEmpty = true}},         {"color_by_object", {.isEmpty = true}},
    };
    for (const auto& [property, lie] : cases)
        expectRefused(generic(everything, lying(property, lie)), DiagnosticCode::PropertyType,
                      property);
}

TEST_F(HostileHost, NumbersThatAreNoneAreRefused)
{
    for (const double number : {nan, infinity, -infinity, 1e39, -1e300})
    {
        SCOPED_TRACE(number);
        for (const std::string& property : numbers)
            expectRefused(generic(everything, lying(property, {.number = number})),
                          DiagnosticCode::ValueNotFinite, property);
        expectRefused(generic(everything, lying("generic_diffuse", {.number = number})),
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
            Behaviour all = lying("generic_diffuse", {.number = number});
            expectAnEnd(generic(everything, all), mode);
            for (const std::string& property : numbers)
                all.lies[property] = {.number = number};
            expectAnEnd(generic(everything, all), mode);
        }
}

/// Without values, names or working property names the material is what it is without them.
TEST_F(HostileHost, WhatIsMissingCountsAsAbsent)
{
    const std::string empty = xmlOf(translate(generic("")).document);
    EXPECT_EQ(xmlOf(translate(generic("", {.hasIdentity = false})).document), empty);
    EXPECT_EQ(
        xmlOf(translate(material(R"("genericProperties": {})", {.hasDefinition = false})).document),
        empty);
    EXPECT_FALSE(translate(generic("", {.hasDefinition = false})).succeeded);
    EXPECT_FALSE(translate(material(R"("schema": "LyrexMetalSchema", "properties": {})",
                                    {.hasDefinition = false}))
                     .succeeded);
    for (const bool working : {true, false})
    {
        const Translation lyrex = translate(
            material(R"("schema": "LyrexMetalSchema", "properties": {"surface_albedo": [1, 1, 1]})",
                     {.hasWorkingNames = working}));
        EXPECT_EQ(inputOf(lyrex.document, "M_shader", "surface_albedo")->getColorSpace(),
                  working ? "rec709_display" : "");
    }
    EXPECT_FALSE(translate(generic("", {.canBeCloned = false})).succeeded);
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::CloneFailed});
}

/// References are asked for as they are stored; a dot at the end is let go only where a file is found
/// without it.
TEST_F(HostileHost, ReferencesAreResolvedAsFarAsTheyCanBe)
{
    assetlib::setResolverFolders({_folder.text()});
    _folder.write("stored.png", "image");
    const auto path = [&](const char* stored)
    {
        const AssetPtr asset =
            generic(textured("generic_diffuse", "x") + "," + textured("generic_bump_map", "x") +
                        R"(, "generic_bump_amount": 1)",
                    lying("unifiedbitmap_Bitmap", {.uri = {{stored, "preferred.png"}}}));
        const mx::DocumentPtr document =
            translate(asset, with(&ConverterOptions::copyTextures, true)).document;
        const mx::NodeGraphPtr graph = document->getNodeGraph("M_nodegraph");
        return graph ? graph->getNode("generic_diffuse")->getInputValue("file")->getValueString()
                     : "";
    };
    for (const char* stored : {"stored.png", "stored.png."})
        EXPECT_EQ(path(stored), _folder.text() + "/M/stored.png");
#if defined(__linux__)
    // Whoever reads from a pipe waits: nothing does, neither for a copy nor for a bake.
    const std::string pipe = _folder.text() + "/pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(path(pipe.c_str()), pipe);
#endif
    for (const char* other : {"absent.png", "absent.png.", ".", ""})
        EXPECT_EQ(path(other), other);
    assetlib::setResolverFolders({});
}

class References : public HostileHost
{
  protected:
    /// Runs `operation` again and again, each time letting the next of the host's operations throw,
    /// until one run meets no failure. Every failure must reach the caller, be told of, leave nothing
    /// registered and give every reference back.
    static void failEverywhere(const std::function<void()>& operation,
                               const std::function<void()>& afterFailure)
    {
        const std::size_t before = watch().live;
        for (std::size_t operations = 0; operations < 5000; ++operations)
        {
            operationsLeft = operations;
            try
            {
                operation();
                ASSERT_TRUE(operationsLeft) << "failure " << operations << " was swallowed";
                operationsLeft.reset();
                return;
            }
            catch (const HostFault&)
            {
                EXPECT_TRUE(!lastCodes().empty() && lastCodes().back() == DiagnosticCode::Exception)
                    << operations << " is not told of";
            }
            EXPECT_EQ(watch().live, before) << operations;
            EXPECT_EQ(registeredAssetCount(), 0u) << operations;
            afterFailure();
        }
        FAIL() << "there is no end";
    }

    static void translateUnderFailures(const AssetPtr& asset, ConverterOptions options)
    {
        MaterialXConverter converter(options);
        mx::DocumentPtr document;
        failEverywhere(
            [&]
            {
                document = mx::createDocument();
                EXPECT_TRUE(converter.TranslateToMaterialX(*asset, "M", document));
            },
            // Nothing is asked once building has begun.
            [&] { EXPECT_TRUE(document->getChildren().empty()); });
        EXPECT_TRUE(isSound(document));
    }
};

TEST_F(References, ComeBackFromATranslationWhateverFails)
{
    for (const std::string schema :
         {"HardwoodSchema", "MetallicPaintSchema", "SolidGlassSchema", "WaterSchema"})
        translateUnderFailures(material("\"schema\": \"" + schema +
                                        R"(", "properties": {"hardwood_tint_color": [1, 0, 0]},
                                        "genericProperties": {)" +
                                        everything + "}"),
                               plainOptions());
    translateUnderFailures(
        material(R"("schema": "LyrexMetalSchema", "properties": {"metal_f0": [1, 1, 1], )" +
                 textured("surface_albedo", "wood.png") + "}"),
        plainOptions());
    translateUnderFailures(generic(images), plainOptions());
    ::testing::internal::CaptureStdout();
    translateUnderFailures(generic(everything), with(&ConverterOptions::verbose, true));
    ::testing::internal::GetCapturedStdout();
}

TEST_F(References, ComeBackFromRegistrationAndDrainingWhateverFails)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    const AssetPtr asset = generic(images);
    failEverywhere(
        [&]
        {
            StringSink message;
            EXPECT_TRUE(converter.RegisterAssetForConversion(*asset, message));
            EXPECT_TRUE(converter.SerializeRegisteredAssetsForConversion(message, nullptr));
        },
        [] {});
}

} // namespace

} // namespace vyr::hosttests
