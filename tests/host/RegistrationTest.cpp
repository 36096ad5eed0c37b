#include <string>
#include <vector>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

class Registration : public HostTest
{
  protected:
    Registration() : _options(plainOptions()), _converter(_options) {}

    void TearDown() override
    {
        _converter.Destroy();
        HostTest::TearDown();
    }

    bool registerAsset(const AssetPtr& asset)
    {
        StringSink message;
        const bool accepted = _converter.RegisterAssetForConversion(*asset, message);
        EXPECT_EQ(message.assignments, 0);
        return accepted;
    }

    static AssetPtr named(const std::string& name)
    {
        return AssetBuilder().name(name).scalar("generic_glossiness", 0.5).build();
    }

    /// No Generic properties to translate from.
    static AssetPtr failing(const std::string& name)
    {
        return AssetBuilder("CeramicSchema").name(name).build();
    }

    std::vector<DiagnosticCode> lastCodes() const
    {
        std::vector<DiagnosticCode> codes;
        for (const Diagnostic& diagnostic : lastDiagnostics())
            codes.push_back(diagnostic.code);
        return codes;
    }

    ConverterOptions _options;
    MaterialXConverter _converter;
};

TEST_F(Registration, DrainsInTheOrderOfRegistration)
{
    for (const char* name : {"Oak", "Ash", "Elm"})
        EXPECT_TRUE(registerAsset(named(name)));
    EXPECT_EQ(registeredAssetCount(), 3u);
    EXPECT_EQ(liveAssets(), 3u) << "clones, since the originals are gone";

    for (const char* name : {"Oak", "Ash", "Elm"})
    {
        StringSink message;
        EXPECT_TRUE(_converter.SerializeRegisteredAssetsForConversion(message, nullptr));
        EXPECT_EQ(message.assignments, 1);
        EXPECT_NE(message.text.find("<surfacematerial name=\"" + std::string(name) + "\""),
                  std::string::npos)
            << message.text;
    }
    EXPECT_EQ(registeredAssetCount(), 0u);
    EXPECT_EQ(liveAssets(), 0u);

    StringSink message;
    EXPECT_FALSE(_converter.SerializeRegisteredAssetsForConversion(message, nullptr));
    EXPECT_EQ(message.assignments, 0);
    EXPECT_EQ(lastCodes(), std::vector{DiagnosticCode::NothingRegistered});
}

TEST_F(Registration, TheTextIsThatOfADirectTranslation)
{
    const AssetPtr asset = named("Oak");
    registerAsset(asset);
    StringSink message;
    ASSERT_TRUE(_converter.SerializeRegisteredAssetsForConversion(message, nullptr));
    EXPECT_EQ(message.text, xmlOf(translate(asset, _options, "Oak").document));
}

TEST_F(Registration, TheFirstAssetOfANameWins)
{
    EXPECT_TRUE(registerAsset(AssetBuilder().name("Oak 1").id("first").build()));
    EXPECT_TRUE(lastDiagnostics().empty());
    EXPECT_TRUE(registerAsset(AssetBuilder().name("Oak_1").id("second").build()));
    EXPECT_EQ(lastCodes(), std::vector{DiagnosticCode::NameDuplicate});
    EXPECT_EQ(registeredAssetCount(), 1u);
    EXPECT_EQ(cloneCount(), 1u);

    StringSink message;
    ASSERT_TRUE(_converter.SerializeRegisteredAssetsForConversion(message, nullptr));
    EXPECT_NE(message.text.find("first"), std::string::npos);

    EXPECT_TRUE(registerAsset(AssetBuilder().name("Oak1").id("third").build()));
    EXPECT_TRUE(lastDiagnostics().empty()) << "a drained name is free again";
}

TEST_F(Registration, AnAssetThatCannotBeClonedIsRefused)
{
    EXPECT_FALSE(registerAsset(AssetBuilder().withoutClone().build()));
    EXPECT_EQ(lastCodes(), std::vector{DiagnosticCode::CloneFailed});
    EXPECT_EQ(registeredAssetCount(), 0u);
}

TEST_F(Registration, AnAssetThatFailsIsTakenOffAndDoesNotBlockTheNext)
{
    registerAsset(failing("Bad"));
    registerAsset(named("Good"));
    StringSink message;
    EXPECT_FALSE(_converter.SerializeRegisteredAssetsForConversion(message, nullptr));
    EXPECT_EQ(lastCodes(), std::vector{DiagnosticCode::NoGenericProperties});
    EXPECT_EQ(message.assignments, 0);
    EXPECT_EQ(registeredAssetCount(), 1u);
    EXPECT_EQ(liveAssets(), 1u);
    EXPECT_TRUE(_converter.SerializeRegisteredAssetsForConversion(message, nullptr));
}

TEST_F(Registration, AnExceptionWhileDrainingTakesTheEntryOff)
{
    registerAsset(named("Oak"));
    registerAsset(named("Ash"));
    StringSink message;
    failAfter(0);
    EXPECT_THROW(_converter.SerializeRegisteredAssetsForConversion(message, nullptr), HostFault);
    EXPECT_EQ(message.assignments, 0);
    EXPECT_EQ(registeredAssetCount(), 1u);
    EXPECT_EQ(liveAssets(), 1u);
    EXPECT_TRUE(_converter.SerializeRegisteredAssetsForConversion(message, nullptr));
    EXPECT_NE(message.text.find("\"Ash\""), std::string::npos);
}

/// A text of the host's that cannot take the result.
class FailingSink final : public MaterialXConverter::IString
{
  public:
    void Assign(const UTF8String&) override { throw HostFault("IString::Assign"); }
};

TEST_F(Registration, AResultThatCannotBeHandedOverTakesTheEntryOff)
{
    registerAsset(named("Oak"));
    FailingSink message;
    EXPECT_THROW(_converter.SerializeRegisteredAssetsForConversion(message, nullptr), HostFault);
    EXPECT_EQ(registeredAssetCount(), 0u);
    EXPECT_EQ(liveAssets(), 0u);
}

TEST_F(Registration, AnUnusableOutputDirectoryFailsEachEntryInTurn)
{
    ConverterOptions options = plainOptions();
    options.outputDirectory = UTF8String((_folder / "missing").string());
    MaterialXConverter converter(options);
    registerAsset(named("Oak"));
    StringSink message;
    EXPECT_FALSE(converter.SerializeRegisteredAssetsForConversion(message, nullptr));
    EXPECT_EQ(lastCodes(), std::vector{DiagnosticCode::OutputDirectory});
    EXPECT_EQ(registeredAssetCount(), 0u);
}

TEST_F(Registration, DestroyReleasesTheAssetsOfAllInstances)
{
    registerAsset(named("Oak"));
    MaterialXConverter other(_options);
    EXPECT_TRUE(other.Destroy());
    EXPECT_EQ(registeredAssetCount(), 0u);
    EXPECT_EQ(liveAssets(), 0u);
    EXPECT_TRUE(other.Destroy());
    EXPECT_TRUE(registerAsset(named("Oak"))) << "registration starts again afterwards";
}

TEST_F(Registration, DestroyingAnyInstanceEmptiesTheSharedList)
{
    registerAsset(named("Oak"));
    {
        const MaterialXConverter copy(_converter);
    }
    EXPECT_EQ(registeredAssetCount(), 0u);
    EXPECT_EQ(liveAssets(), 0u);
}

TEST_F(Registration, NamesAreThoseOfTheRegisteringInstance)
{
    ConverterOptions options = plainOptions();
    options.useAssetIdInName = true;
    MaterialXConverter byIdentifier(options);
    StringSink message;
    const AssetPtr first = AssetBuilder().name("Oak").id("1").build();
    const AssetPtr second = AssetBuilder().name("Oak").id("2").build();
    EXPECT_TRUE(byIdentifier.RegisterAssetForConversion(*first, message));
    EXPECT_TRUE(byIdentifier.RegisterAssetForConversion(*second, message));
    EXPECT_EQ(registeredAssetCount(), 2u);
    ASSERT_TRUE(_converter.SerializeRegisteredAssetsForConversion(message, nullptr));
    EXPECT_NE(message.text.find("\"XID_Oak_1\""), std::string::npos);
}

} // namespace

} // namespace vyr::hosttests
