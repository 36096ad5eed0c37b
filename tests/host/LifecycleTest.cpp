#include <cstddef>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <tuple>

#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/ThreadInfo.h>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

class Lifecycle : public HostTest
{
  protected:
    void TearDown() override
    {
        MaterialXConverter::releaseInstance();
        HostTest::TearDown();
    }

    static std::string nameBy(const std::shared_ptr<MaterialXConverter>& converter)
    {
        return converter->getMaterialName(*AssetBuilder().name("Oak").id("7").build()).str();
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
    EXPECT_EQ(nameBy(held), "XID_Oak_7");
    MaterialXConverter::releaseInstance();
    MaterialXConverter::releaseInstance();
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_EQ(nameBy(MaterialXConverter::getInstance(_second)), "Oak");
    EXPECT_EQ(nameBy(held), "XID_Oak_7") << "it lives with its holders";
    for (const char* schema : {"GenericSchema", "LyrexMetalSchema", "", "Unheard"})
        EXPECT_TRUE(held->SupportsConversion(*AssetBuilder(schema).build())) << schema;
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
    info.name = "Label";
    info.type = static_cast<ConversionType>(77);
    StringSink sink;
    EXPECT_FALSE(converter.Convert(info, sink));
    EXPECT_EQ(lastCodes(), Codes{DiagnosticCode::NoConverter});
    EXPECT_EQ(sink.assignments, 0);

    EXPECT_TRUE(converter.RegisterConverter(info.type, answering("first ", true)));
    EXPECT_TRUE(converter.Convert(info, sink));
    EXPECT_EQ(sink.text, "first Label");

    EXPECT_TRUE(converter.RegisterConverter(info.type, answering("second ", false)));
    MaterialXConverter other(_second);
    EXPECT_FALSE(other.Convert(info, sink)) << "the registry is shared by all converters";
    EXPECT_EQ(sink.text, "second Label");

    converter.RegisterConverter(info.type, nullptr);
    EXPECT_THROW(converter.Convert(info, sink), std::bad_function_call);
}

TEST_F(Lifecycle, BuiltInOverlaysRefuseAMissingPayload)
{
    for (const auto& [type, reason] : {std::pair(ConversionType::Decal, "invalid decal info"),
                                       {ConversionType::Thread, "invalid thread info"}})
    {
        MaterialInfo info;
        info.type = type;
        StringSink sink;
        EXPECT_THROW(MaterialXConverter(_second).Convert(info, sink), std::invalid_argument);
        EXPECT_EQ(lastDiagnostics().at(0).text, reason);
    }
}

/// In a process of its own, since nothing brings the built-in converter back.
using LifecycleDeathTest = Lifecycle;

TEST_F(LifecycleDeathTest, AHostReplacesABuiltInOverlay)
{
    const auto replaceAndConvert = [this]
    {
        MaterialXConverter converter(_second);
        converter.RegisterConverter(ConversionType::Thread,
                                    [](const MaterialInfo& info, MaterialXConverter::IString&)
                                    { return info.payload == nullptr; });
        MaterialInfo info;
        info.type = ConversionType::Thread;
        StringSink sink;
        std::exit(converter.Convert(info, sink) ? 0 : 1);
    };
    EXPECT_EXIT(replaceAndConvert(), ::testing::ExitedWithCode(0), "");
}

/// Hosts set only what they care for, and hosts of other compilers' builds rely on the places of the
/// fields.
TEST_F(Lifecycle, RecordsHaveTheExportedDefaultsAndLayout)
{
    static_assert(sizeof(ConverterOptions) == sizeof(UTF8String) + 32);
    static_assert(sizeof(DecalInfo) == sizeof(TextureInfo) + 24);
    const ConverterOptions o;
    const auto offsetOf = [&](const auto& field)
    { return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&o); };
    constexpr std::ptrdiff_t text = sizeof(UTF8String);
    EXPECT_EQ(std::tuple(offsetOf(o.imageSize), offsetOf(o.addLook), offsetOf(o.copyTextures),
                         offsetOf(o.verbose), offsetOf(o.writeMtlxFile),
                         offsetOf(o.useAssetIdInName), offsetOf(o.colorMode),
                         offsetOf(o.roughnessMode), offsetOf(o.translationPath)),
              std::tuple(text, text + 8, text + 9, text + 10, text + 11, text + 12, text + 16,
                         text + 20, text + 24));
    EXPECT_EQ(std::tuple(o.outputDirectory.str(), o.imageSize, o.addLook, o.copyTextures, o.verbose,
                         o.writeMtlxFile, o.useAssetIdInName, o.colorMode, o.roughnessMode,
                         o.translationPath),
              std::tuple("", 1024u, false, false, false, false, false, 2, 2, 0));
    const DecalInfo d;
    const TextureInfo& t = d.texture;
    EXPECT_EQ(std::tuple(d.kind, t.realWorldOffsetU, t.realWorldOffsetV, t.realWorldScaleU,
                         t.realWorldScaleV, t.unit, t.uvOffsetU, t.uvOffsetV, t.uvScaleU,
                         t.uvScaleV, t.rotation, t.auxValue, d.value0, d.value1, d.value2),
              std::tuple(1, 0, 0, 1, 1, 3, 0, 0, 1, 1, 0, 0, 0, 0, 0));
    EXPECT_EQ(static_cast<int>(MaterialInfo().type), 0);
    const ThreadInfo thread;
    EXPECT_FALSE(thread.threadTexture || thread.flag || thread.endClippingPlane);
}

} // namespace

} // namespace vyr::hosttests
