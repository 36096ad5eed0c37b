#include <cstdlib>
#include <functional>
#include <stdexcept>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

/// A type that only these tests register converters for.
constexpr auto ownType = static_cast<ConversionType>(77);

class Lifecycle : public HostTest
{
  protected:
    void TearDown() override
    {
        MaterialXConverter::releaseInstance();
        HostTest::TearDown();
    }

    static std::string nameBy(const MaterialXConverter& converter)
    {
        return MaterialXConverter(converter)
            .getMaterialName(*AssetBuilder().name("Oak").id("7").build())
            .str();
    }

    /// Options that show in material names.
    ConverterOptions _first = with(&ConverterOptions::useAssetIdInName, true);
    ConverterOptions _second;
};

TEST_F(Lifecycle, TheFirstOptionsOfTheSingletonStayUntilItIsReleased)
{
    const auto held = MaterialXConverter::getInstance(_first);
    EXPECT_EQ(MaterialXConverter::getInstance(_second), held);
    _first.useAssetIdInName = false;
    EXPECT_EQ(nameBy(*held), "XID_Oak_7");
    MaterialXConverter::releaseInstance();
    MaterialXConverter::releaseInstance();
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(nameBy(*MaterialXConverter::getInstance(_second)), "Oak");
    EXPECT_EQ(nameBy(*held), "XID_Oak_7") << "it lives with its holders";
}

TEST_F(Lifecycle, EverySchemaIsSupported)
{
    MaterialXConverter converter(_second);
    for (const char* schema : {"GenericSchema", "LyrexMetalSchema", "", "Unheard"})
        EXPECT_TRUE(converter.SupportsConversion(*AssetBuilder(schema).build())) << schema;
    EXPECT_TRUE(converter.SupportsConversion(*AssetBuilder().withoutDefinition().build()));
}

TEST_F(Lifecycle, ConvertCallsTheConverterRegisteredLast)
{
    MaterialXConverter converter(_second);
    const auto answering = [](const std::string& text, bool result)
    {
        return [text, result](const MaterialInfo& info, MaterialXConverter::IString& message)
        {
            message.Assign(UTF8String(text + info.name.str()));
            return result;
        };
    };
    MaterialInfo info;
    info.name = UTF8String("Label");
    info.type = ownType;
    StringSink sink;
    EXPECT_FALSE(converter.Convert(info, sink));
    EXPECT_EQ(lastCodes(), std::vector{DiagnosticCode::NoConverter});
    EXPECT_EQ(sink.assignments, 0);

    EXPECT_TRUE(converter.RegisterConverter(ownType, answering("first ", true)));
    EXPECT_TRUE(converter.Convert(info, sink));
    EXPECT_EQ(sink.text, "first Label");

    EXPECT_TRUE(converter.RegisterConverter(ownType, answering("second ", false)));
    MaterialXConverter other(_second);
    EXPECT_FALSE(other.Convert(info, sink)) << "the registry is shared by all converters";
    EXPECT_EQ(sink.text, "second Label");

    converter.RegisterConverter(ownType, nullptr);
    EXPECT_THROW(converter.Convert(info, sink), std::bad_function_call);
}

TEST_F(Lifecycle, BuiltInOverlaysRefuseAMissingPayload)
{
    MaterialXConverter converter(_second);
    for (const auto& [type, reason] : {std::pair(ConversionType::Decal, "invalid decal info"),
                                       {ConversionType::Thread, "invalid thread info"}})
    {
        MaterialInfo info;
        info.type = type;
        StringSink sink;
        try
        {
            converter.Convert(info, sink);
            ADD_FAILURE() << "nothing thrown";
        }
        catch (const std::invalid_argument& refusal)
        {
            EXPECT_STREQ(refusal.what(), reason);
        }
        EXPECT_EQ(sink.assignments, 0);
    }
}

/// In a process of its own, since nothing brings the built-in converter back.
using LifecycleDeathTest = Lifecycle;

TEST_F(LifecycleDeathTest, AHostReplacesABuiltInOverlay)
{
    const auto replaceAndConvert = [this]
    {
        MaterialXConverter converter(_second);
        bool called = false;
        converter.RegisterConverter(ConversionType::Thread,
                                    [&](const MaterialInfo& info, MaterialXConverter::IString&)
                                    { return called = info.payload == nullptr; });
        MaterialInfo info;
        info.type = ConversionType::Thread;
        StringSink sink;
        const bool result = converter.Convert(info, sink);
        std::exit(called && result ? 0 : 1);
    };
    EXPECT_EXIT(replaceAndConvert(), ::testing::ExitedWithCode(0), "");
}

} // namespace

} // namespace vyr::hosttests
