#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

constexpr DiagnosticCode allCodes[] = {
    DiagnosticCode::PropertyType,
    DiagnosticCode::PropertyInvalid,
    DiagnosticCode::ValueNotFinite,
    DiagnosticCode::NoGenericProperties,
    DiagnosticCode::UnknownSchema,
    DiagnosticCode::UnhandledTextureSchema,
    DiagnosticCode::LegacyUnavailable,
    DiagnosticCode::NameInvalid,
    DiagnosticCode::NameTaken,
    DiagnosticCode::NoDocument,
    DiagnosticCode::OutputDirectory,
    DiagnosticCode::CloneFailed,
    DiagnosticCode::NothingRegistered,
    DiagnosticCode::NameEmpty,
    DiagnosticCode::Exception,
    DiagnosticCode::NoConverter,
    DiagnosticCode::PropertyUnread,
    DiagnosticCode::NameDuplicate,
    DiagnosticCode::TextureNotTranslated,
    DiagnosticCode::TexturePathEmpty,
    DiagnosticCode::TextureFileMissing,
    DiagnosticCode::TextureUnused,
    DiagnosticCode::ConnectionsIgnored,
    DiagnosticCode::FadeIgnored,
    DiagnosticCode::CutoutIgnored,
    DiagnosticCode::UnitUnknown,
    DiagnosticCode::ChoiceUnknown,
    DiagnosticCode::TextChanged,
    DiagnosticCode::ValueAdjusted,
    DiagnosticCode::BakeFailed,
    DiagnosticCode::TextureNameRefused,
    DiagnosticCode::TextureNotGathered,
    DiagnosticCode::TextureRenamed,
    DiagnosticCode::TextureCaseDiffers,
};

using Diagnostics = HostTest;

TEST_F(Diagnostics, EveryCodeHasANameOfItsOwn)
{
    std::set<std::string> names;
    for (const DiagnosticCode code : allCodes)
    {
        const std::string name = diagnosticCodeName(code);
        EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string::npos) << name;
        EXPECT_NE(name, "unknown") << static_cast<int>(code);
        EXPECT_TRUE(names.insert(name).second) << name;
    }
    EXPECT_STREQ(diagnosticCodeName(DiagnosticCode::PropertyType), "property-type");
    for (const int number : {0, -1, 999, 1000, 5000})
        EXPECT_STREQ(diagnosticCodeName(static_cast<DiagnosticCode>(number)), "unknown") << number;
}

struct TypeCase
{
    const char* property;
    const char* expectedType;
};

/// Each property that is read of every material that has it.
const TypeCase typeCases[] = {
    {"color_by_object", "ePropertyType_Boolean"},
    {"generic_diffuse", "ePropertyType_Color"},
    {"generic_reflectivity_at_0deg", "ePropertyType_Scalar"},
    {"generic_glossiness", "ePropertyType_Scalar"},
    {"generic_transparency", "ePropertyType_Scalar"},
    {"generic_self_illum_luminance", "ePropertyType_Scalar"},
    {"generic_bump_amount", "ePropertyType_Scalar"},
};

TEST_F(Diagnostics, NameThePropertyOfTheWrongTypeAndTheTypeExpected)
{
    for (const TypeCase& one : typeCases)
    {
        const Translation translation =
            translate(AssetBuilder().id("tile").string(one.property, "0.5").build());
        EXPECT_FALSE(translation.succeeded) << one.property;
        EXPECT_TRUE(translation.document->getChildren().empty()) << one.property;
        const Diagnostic reason = translation.first(DiagnosticCode::PropertyType);
        EXPECT_EQ(reason.severity, Severity::Error);
        EXPECT_EQ(reason.asset, "tile");
        EXPECT_EQ(reason.property, one.property);
        EXPECT_EQ(reason.text, one.expectedType);
    }
}

/// A whole number is not a real one: the type codes are compared exactly.
TEST_F(Diagnostics, IntegersAreNoScalars)
{
    const Translation translation =
        translate(AssetBuilder().integer("generic_glossiness", 1).build());
    EXPECT_FALSE(translation.succeeded);
    EXPECT_EQ(translation.first(DiagnosticCode::PropertyType).property, "generic_glossiness");
}

/// The tint test reads a choice list of the asset's own table.
TEST_F(Diagnostics, NameAPropertyThatIsNoChoiceList)
{
    const Translation translation = translate(AssetBuilder("HardwoodSchema")
                                                  .scalar("hardwood_tint_enabled", 1)
                                                  .generic()
                                                  .color("generic_diffuse", 1, 1, 1)
                                                  .build());
    EXPECT_FALSE(translation.succeeded);
    const Diagnostic reason = translation.first(DiagnosticCode::PropertyType);
    EXPECT_EQ(reason.property, "hardwood_tint_enabled");
    EXPECT_EQ(reason.text, "Invalid property specified");
}

TEST_F(Diagnostics, TellWhyThereAreNoGenericProperties)
{
    const Translation translation = translate(AssetBuilder("CeramicSchema").id("tile").build());
    EXPECT_FALSE(translation.succeeded);
    const Diagnostic reason = translation.first(DiagnosticCode::NoGenericProperties);
    EXPECT_EQ(reason.asset, "tile");
    EXPECT_NE(reason.text.find("CeramicSchema"), std::string::npos) << reason.text;
}

TEST_F(Diagnostics, NameTypingErrors)
{
    const Translation translation = translate(
        AssetBuilder().scalar("generic_glosiness", 0.3).color("generic_diffuse", 1, 1, 1).build());
    EXPECT_TRUE(translation.succeeded);
    ASSERT_EQ(translation.count(DiagnosticCode::PropertyUnread), 1u) << translation.report();
    const Diagnostic warning = translation.first(DiagnosticCode::PropertyUnread);
    EXPECT_EQ(warning.severity, Severity::Warning);
    EXPECT_EQ(warning.asset, "asset-id");
    EXPECT_EQ(warning.property, "generic_glosiness");
}

TEST_F(Diagnostics, NeedAListingToNameTypingErrors)
{
    const Translation translation =
        translate(AssetBuilder().scalar("generic_glosiness", 0.3).withoutListing().build());
    EXPECT_TRUE(translation.succeeded);
    EXPECT_TRUE(translation.diagnostics.empty()) << translation.report();
}

struct WarningCase
{
    const char* property;
    DiagnosticCode code;
    AssetPtr (*build)();
};

/// What the asset says and the document does not.
const WarningCase warningCases[] = {
    {"generic_cutout_opacity", DiagnosticCode::CutoutIgnored,
     [] { return AssetBuilder().scalar("generic_cutout_opacity", 0.5).build(); }},
    {"generic_diffuse_image_fade", DiagnosticCode::FadeIgnored,
     []
     {
         return AssetBuilder()
             .color("generic_diffuse", 1, 0, 0)
             .scalar("generic_diffuse_image_fade", 0.5)
             .connect("generic_diffuse", bitmapAsset("wood.png"))
             .build();
     }},
    {"generic_diffuse", DiagnosticCode::ConnectionsIgnored,
     []
     {
         return AssetBuilder()
             .color("generic_diffuse", 1, 0, 0)
             .connect("generic_diffuse", bitmapAsset("wood.png"))
             .connect("generic_diffuse", bitmapAsset("stone.png"))
             .build();
     }},
};

TEST_F(Diagnostics, TellWhatIsLeftOut)
{
    for (const WarningCase& one : warningCases)
    {
        const Translation translation = translate(one.build());
        EXPECT_TRUE(translation.succeeded) << one.property << "\n" << translation.report();
        const Diagnostic warning = translation.first(one.code);
        EXPECT_EQ(warning.severity, Severity::Warning);
        EXPECT_EQ(warning.property, one.property);
    }
}

/// A value that changes nothing is worth no words.
TEST_F(Diagnostics, AreSilentAboutWhatMakesNoDifference)
{
    const Translation translation = translate(AssetBuilder()
                                                  .color("generic_diffuse", 1, 0, 0)
                                                  .scalar("generic_diffuse_image_fade", 1)
                                                  .scalar("generic_cutout_opacity", 1)
                                                  .boolean("generic_is_metal", false)
                                                  .scalar("generic_transparency", 0)
                                                  .scalar("generic_refraction_index", 1.5)
                                                  .boolean("Hidden", false)
                                                  .text("VersionGUID", "GenericSchema")
                                                  .build());
    EXPECT_TRUE(translation.succeeded);
    EXPECT_TRUE(translation.diagnostics.empty()) << translation.report();
}

TEST_F(Diagnostics, AreThoseOfTheLastCall)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    const AssetPtr bad = AssetBuilder("CeramicSchema").build();
    const AssetPtr good = AssetBuilder().build();
    EXPECT_FALSE(converter.TranslateToMaterialX(*bad, "M", mx::createDocument()));
    EXPECT_EQ(lastDiagnostics().size(), 1u);
    EXPECT_FALSE(converter.TranslateToMaterialX(*bad, "M", mx::createDocument()));
    EXPECT_EQ(lastDiagnostics().size(), 1u);
    EXPECT_EQ(converter.getMaterialName(*good).str(), "TestMaterial");
    EXPECT_EQ(lastDiagnostics().size(), 1u) << "naming is no operation that fails";
    EXPECT_TRUE(converter.TranslateToMaterialX(*good, "M", mx::createDocument()));
    EXPECT_TRUE(lastDiagnostics().empty());
}

TEST_F(Diagnostics, BelongToTheThread)
{
    ConverterOptions options = plainOptions();
    MaterialXConverter converter(options);
    const AssetPtr bad = AssetBuilder("CeramicSchema").build();
    EXPECT_FALSE(converter.TranslateToMaterialX(*bad, "M", mx::createDocument()));
    std::thread(
        [&]
        {
            EXPECT_TRUE(lastDiagnostics().empty());
            EXPECT_FALSE(converter.TranslateToMaterialX(*bad, "1", mx::createDocument()));
            ASSERT_EQ(lastDiagnostics().size(), 1u);
            EXPECT_EQ(lastDiagnostics().front().code, DiagnosticCode::NameInvalid);
        })
        .join();
    ASSERT_EQ(lastDiagnostics().size(), 1u);
    EXPECT_EQ(lastDiagnostics().front().code, DiagnosticCode::NoGenericProperties);
}

TEST_F(Diagnostics, TellOfAnExceptionThatLeftTheCall)
{
    const AssetPtr asset = AssetBuilder().build();
    failAfter(0);
    EXPECT_THROW(translate(asset), HostFault);
    ASSERT_FALSE(lastDiagnostics().empty());
    EXPECT_EQ(lastDiagnostics().back().code, DiagnosticCode::Exception);
    EXPECT_EQ(lastDiagnostics().back().severity, Severity::Error);
    EXPECT_FALSE(lastDiagnostics().back().text.empty());
}

/// The result and the severities agree: an error means false, and false means an error.
TEST_F(Diagnostics, HoldAnErrorExactlyWhenTheCallFailed)
{
    const AssetPtr assets[] = {
        AssetBuilder().build(),
        AssetBuilder().scalar("generic_glosiness", 1).build(),
        AssetBuilder().scalar("color_by_object", 1).scalar("unread", 1).build(),
        AssetBuilder("WaterSchema").build(),
        AssetBuilder().connect("generic_diffuse", AssetBuilder("CheckerSchema").build()).build(),
    };
    for (const AssetPtr& asset : assets)
    {
        const Translation translation = translate(asset);
        std::size_t errors = 0;
        for (const Diagnostic& diagnostic : translation.diagnostics)
        {
            errors += diagnostic.severity == Severity::Error;
            EXPECT_EQ(static_cast<int>(diagnostic.code) < 1000,
                      diagnostic.severity == Severity::Error);
        }
        EXPECT_EQ(errors > 0, !translation.succeeded) << translation.report();
    }
}

} // namespace

} // namespace vyr::hosttests
