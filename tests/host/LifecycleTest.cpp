#include <functional>
#include <memory>
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

    /// Options that show in material names.
    static ConverterOptions identifierNames()
    {
        ConverterOptions options;
        options.useAssetIdInName = true;
        return options;
    }
};

TEST_F(Lifecycle, TheFirstOptionsOfTheSingletonStay)
{
    ConverterOptions first = identifierNames();
    ConverterOptions second;
    const auto instance = MaterialXConverter::getInstance(first);
    EXPECT_EQ(MaterialXConverter::getInstance(second), instance);
    first.useAssetIdInName = false;
    const AssetPtr asset = AssetBuilder().name("Oak").id("7").build();
    EXPECT_EQ(instance->getMaterialName(*asset).str(), "XID_Oak_7");
}

TEST_F(Lifecycle, AReleasedSingletonLivesWithItsHolders)
{
    MaterialXConverter::releaseInstance();
    ConverterOptions first = identifierNames();
    ConverterOptions second;
    const auto held = MaterialXConverter::getInstance(first);
    MaterialXConverter::releaseInstance();
    MaterialXConverter::releaseInstance();
    EXPECT_EQ(held.use_count(), 1);

    const auto fresh = MaterialXConverter::getInstance(second);
    EXPECT_NE(fresh, held);
    const AssetPtr asset = AssetBuilder().name("Oak").id("7").build();
    EXPECT_EQ(held->getMaterialName(*asset).str(), "XID_Oak_7");
    EXPECT_EQ(fresh->getMaterialName(*asset).str(), "Oak");
}

TEST_F(Lifecycle, ACopyTakesTheOptionsAlong)
{
    ConverterOptions options = identifierNames();
    const MaterialXConverter original(options);
    MaterialXConverter copy(original);
    const AssetPtr asset = AssetBuilder().name("Oak").id("7").build();
    EXPECT_EQ(copy.getMaterialName(*asset).str(), "XID_Oak_7");
}

TEST_F(Lifecycle, EverySchemaIsSupported)
{
    ConverterOptions options;
    MaterialXConverter converter(options);
    kelvor::platform::assets::IConverterAdaptor& adaptor = converter;
    for (const char* schema : {"GenericSchema", "LyrexMetalSchema", "WaterSchema", "", "Unheard"})
        EXPECT_TRUE(adaptor.SupportsConversion(*AssetBuilder(schema).build())) << schema;
    EXPECT_TRUE(adaptor.SupportsConversion(*AssetBuilder().withoutDefinition().build()));
}

TEST_F(Lifecycle, ConvertCallsTheConverterRegisteredLast)
{
    ConverterOptions options;
    MaterialXConverter converter(options);
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
    EXPECT_TRUE(converter.RegisterConverter(ownType, answering("first ", true)));
    EXPECT_TRUE(converter.Convert(info, sink));
    EXPECT_EQ(sink.text, "first Label");

    EXPECT_TRUE(converter.RegisterConverter(ownType, answering("second ", false)));
    MaterialXConverter other(options);
    EXPECT_FALSE(other.Convert(info, sink)) << "the registry is shared by all converters";
    EXPECT_EQ(sink.text, "second Label");

    converter.RegisterConverter(ownType, nullptr);
    EXPECT_THROW(converter.Convert(info, sink), std::bad_function_call);
}

TEST_F(Lifecycle, ConvertWithoutAConverterSaysSo)
{
    ConverterOptions options;
    MaterialXConverter converter(options);
    for (const int type : {0, 1, 2, -1, 123456})
    {
        MaterialInfo info;
        info.type = static_cast<ConversionType>(type);
        StringSink sink;
        EXPECT_FALSE(converter.Convert(info, sink)) << type;
        EXPECT_EQ(sink.assignments, 0);
        ASSERT_EQ(lastDiagnostics().size(), 1u);
        EXPECT_EQ(lastDiagnostics().front().code, DiagnosticCode::NoConverter);
    }
}

std::string refusalOf(ConversionType type)
{
    ConverterOptions options;
    MaterialXConverter converter(options);
    MaterialInfo info;
    info.type = type;
    StringSink sink;
    try
    {
        converter.Convert(info, sink);
    }
    catch (const std::invalid_argument& refusal)
    {
        EXPECT_EQ(sink.assignments, 0);
        return refusal.what();
    }
    return "nothing thrown";
}

TEST_F(Lifecycle, BuiltInOverlaysRefuseAMissingPayload)
{
    EXPECT_EQ(refusalOf(ConversionType::Decal), "invalid decal info");
    EXPECT_EQ(refusalOf(ConversionType::Thread), "invalid thread info");
}

/// In a process of its own, since nothing brings the built-in converter back.
using LifecycleDeathTest = Lifecycle;

TEST_F(LifecycleDeathTest, AHostReplacesABuiltInOverlay)
{
    const auto replaceAndConvert = []
    {
        ConverterOptions options;
        MaterialXConverter converter(options);
        bool called = false;
        converter.RegisterConverter(ConversionType::Thread,
                                    [&](const MaterialInfo& info, MaterialXConverter::IString&)
                                    {
                                        called = info.payload == nullptr;
                                        return true;
                                    });
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
