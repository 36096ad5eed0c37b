#include <fstream>
#include <regex>
#include <set>
#include <thread>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

using Diagnostics = HostTest;

/// Every code has a name of its own and a row of the table that hosts read.
TEST_F(Diagnostics, AreAllInTheTable)
{
    std::ifstream table(std::string(VYR_SOURCE_DIR) + "/docs/diagnostics.md");
    std::set<std::string> rows;
    for (std::string line; std::getline(table, line);)
    {
        std::smatch row;
        if (std::regex_search(line, row, std::regex("^\\| ([0-9]+) \\| `([a-z-]+)` \\| .")))
            rows.insert(row.str(1) + " " + row.str(2));
    }
    std::set<std::string> codes;
    std::set<std::string> names;
    for (int number = -10; number < 3000; ++number)
    {
        const std::string name = diagnosticCodeName(static_cast<DiagnosticCode>(number));
        if (name == "unknown")
            continue;
        codes.insert(std::to_string(number) + " " + name);
        EXPECT_TRUE(names.insert(name).second) << name;
    }
    EXPECT_EQ(codes, rows);
    EXPECT_TRUE(codes.count("1 property-type") && codes.count("1001 property-unread"));
}

/// An error means false, a warning means true, and each names its place.
TEST_F(Diagnostics, NameThePlaceAndTheReason)
{
    const std::tuple<AssetPtr, DiagnosticCode, const char*, const char*> cases[] = {
        {AssetBuilder().string("generic_diffuse", "0.5").build(), DiagnosticCode::PropertyType,
         "generic_diffuse", "ePropertyType_Color"},
        {AssetBuilder("HardwoodSchema").scalar("hardwood_tint_enabled", 1).generic().build(),
         DiagnosticCode::PropertyType, "hardwood_tint_enabled", "Invalid property specified"},
        {AssetBuilder("CeramicSchema").build(), DiagnosticCode::NoGenericProperties, "",
         "CeramicSchema"},
        {AssetBuilder().withoutClone().build(), DiagnosticCode::CloneFailed, "", ""},
        {AssetBuilder().scalar("generic_glosiness", 0.3).build(), DiagnosticCode::PropertyUnread,
         "generic_glosiness", ""},
        {AssetBuilder().scalar("generic_cutout_opacity", 0.5).build(),
         DiagnosticCode::CutoutIgnored, "generic_cutout_opacity", ""},
        {AssetBuilder().connect("color_by_object", bitmapAsset("wood.png")).build(),
         DiagnosticCode::TextureUnused, "color_by_object", ""},
    };
    for (const auto& [asset, code, property, text] : cases)
    {
        const Translation translation = translate(asset);
        ASSERT_EQ(translation.diagnostics.size(), 1u) << property << "\n" << translation.report();
        const Diagnostic told = translation.first(code);
        const bool isError = static_cast<int>(code) < 1000;
        EXPECT_EQ(told.severity == Severity::Error, isError) << property;
        EXPECT_EQ(translation.succeeded, !isError) << property;
        EXPECT_EQ(translation.document->getChildren().empty(), isError) << property;
        EXPECT_EQ(told.asset, "asset-id");
        EXPECT_EQ(told.property, property);
        EXPECT_NE(told.text.find(text), std::string::npos) << told.text;
    }
}

/// A value that changes nothing is worth no words.
TEST_F(Diagnostics, AreSilentAboutWhatMakesNoDifference)
{
    AssetBuilder builder;
    builder.color("generic_diffuse", 1, 0, 0).scalar("generic_diffuse_image_fade", 1);
    builder.scalar("generic_cutout_opacity", 1).boolean("generic_is_metal", false);
    builder.scalar("generic_transparency", 0).scalar("generic_refraction_index", 1.5);
    builder.boolean("Hidden", false).text("VersionGUID", "GenericSchema");
    const Translation translation = translate(builder.build());
    EXPECT_TRUE(translation.succeeded);
    EXPECT_TRUE(translation.diagnostics.empty()) << translation.report();
}

TEST_F(Diagnostics, AreThoseOfTheThreadsLastCall)
{
    const AssetPtr bad = AssetBuilder("CeramicSchema").build();
    for (int repeat = 0; repeat < 2; ++repeat)
    {
        translate(bad);
        EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoGenericProperties});
    }
    std::thread(
        [&]
        {
            EXPECT_TRUE(lastDiagnostics().empty());
            translate(bad, plainOptions(), "1");
            EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NameInvalid});
        })
        .join();
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoGenericProperties});
    translate(AssetBuilder().build());
    EXPECT_TRUE(lastDiagnostics().empty());
}

/// Talking changes no result, and a strange "Hidden" is taken for none.
TEST_F(Diagnostics, AreApartFromWhatAVerboseTranslationPrints)
{
    AssetBuilder builders[3];
    builders[0].boolean("Hidden", true);
    builders[1].string("Hidden", "yes");
    for (AssetBuilder& builder : builders)
    {
        builder.name("Oak").description("A warm wood").scalar("generic_glossiness", 0.25);
        const AssetPtr asset = builder.connect("generic_diffuse", bitmapAsset("oak.png")).build();
        const Translation quiet = translate(asset);
        ::testing::internal::CaptureStdout();
        const Translation verbose = translate(asset, with(&ConverterOptions::verbose, true));
        const std::string text = ::testing::internal::GetCapturedStdout();
        EXPECT_EQ(xmlOf(verbose.document), xmlOf(quiet.document));
        EXPECT_EQ(verbose.report(), quiet.report());
        const std::string hidden = &builder == builders ? "YES\n" : "NO\n";
        EXPECT_TRUE(text.starts_with("Material Class:GenericSchema\nDescription: A warm wood\n"
                                     "Name: Oak\nHidden or not: " +
                                     hidden))
            << text;
        for (const char* word : {"generic_glossiness", "UnifiedBitmapSchema"})
            EXPECT_NE(text.find(word), std::string::npos) << text;
    }
}

} // namespace

} // namespace vyr::hosttests
