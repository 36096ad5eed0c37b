#include <cmath>
#include <functional>
#include <limits>
#include <thread>

#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/Overlays.h>
#include <MaterialTranslation/ThreadInfo.h>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

using Four = std::array<float, 4>;
using Code = DiagnosticCode;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

class Overlays : public HostTest
{
  protected:
    TextureInfo texture(const std::string& path) const
    {
        TextureInfo info;
        info.path = UTF8String(path);
        return info;
    }
    TextureInfo image() const { return texture(_folder.write("image.png", "image").string()); }

    /// The text of a request.
    template <class Payload>
    std::string convert(Payload& payload, const std::string& name = "Overlay")
    {
        constexpr bool isDecal = std::is_same_v<Payload, DecalInfo>;
        MaterialInfo info;
        info.name = UTF8String(name);
        info.type = isDecal ? ConversionType::Decal : ConversionType::Thread;
        info.payload = &payload;
        StringSink sink;
        EXPECT_TRUE(_converter.Convert(info, sink));
        EXPECT_EQ(sink.assignments, 1);
        return sink.text;
    }

    /// Expects a request to be answered with a sound document, or with an empty one, and these codes.
    template <class Payload>
    void expect(Payload payload, const Codes& codes, const std::string& what,
                const std::string& name = "Overlay")
    {
        const std::string text = convert(payload, name);
        EXPECT_EQ(lastCodes(), codes) << what;
        const mx::DocumentPtr document = mx::createDocument();
        mx::readFromXmlString(document, text);
        EXPECT_TRUE(isSound(document)) << what;
        const bool isEmpty = !codes.empty() && codes.back() == Code::NothingToBuild;
        EXPECT_EQ(document->getChildren().empty(), isEmpty) << what;
        EXPECT_EQ(text.find("nan"), text.npos) << what;
        EXPECT_EQ(text.find("\"inf"), text.npos) << what;
    }

    ConverterOptions _options;
    MaterialXConverter _converter{_options};
};

TEST_F(Overlays, OfDecalsThatNobodyExpects)
{
    const std::pair<std::function<void(DecalInfo&)>, Codes> changes[] = {
        {[](DecalInfo&) {}, {}},
        {[](DecalInfo& d) { d.kind = least; }, {}},
        {[](DecalInfo& d) { d.value0 = least; }, {}},
        {[](DecalInfo& d) { d.kind = 3, d.value0 = least, d.value1 = 256; },
         {Code::ValueAdjusted, Code::ValueAdjusted}},
        {[](DecalInfo& d) { d.texture.unit = least; }, {}},
        {[](DecalInfo& d) { d.texture.rotation = nan; }, {Code::ValueAdjusted}},
        {[](DecalInfo& d) { d.texture.uvScale = {0.0f, -infinite}; }, {Code::ValueAdjusted}},
        {[](DecalInfo& d) { d.texture.realWorldOffset = {3e38f, -1e-45f}; }, {}},
        {[](DecalInfo& d) { d.texture.path = ""; }, {Code::TexturePathEmpty, Code::NothingToBuild}},
        {[](DecalInfo& d) { d.texture.path = "a\x01\xFF.png"; },
         {Code::TextureNameRefused, Code::NothingToBuild}},
        {[](DecalInfo& d) { d.texture.path = UTF8String(std::string(100000, 'x')); },
         {Code::TextureFileMissing}},
    };
    for (const auto& [change, codes] : changes)
    {
        DecalInfo decal;
        decal.texture = image();
        change(decal);
        expect(decal, codes, std::to_string(&codes - &changes[0].second));
    }
}

TEST_F(Overlays, OfThreadsWithAnyPointersMissing)
{
    for (unsigned given = 0; given < 64; ++given)
    {
        ThreadInfo thread;
        const auto has = [&](unsigned bit) { return (given >> bit & 1) != 0; };
        if (has(0))
            thread.threadTexture = std::make_shared<TextureInfo>(image());
        if (has(1))
            thread.normalTexture = std::make_shared<TextureInfo>(image());
        thread.flag = has(2);
        if (has(3))
            thread.baseMaterialColor = std::make_shared<Four>(Four{0.5f, 0.5f, 0.5f, nan});
        if (has(4))
            thread.startClippingPlane = std::make_shared<Four>(Four{0, 0, 1e-40f, 0});
        if (has(5))
            thread.endClippingPlane = std::make_shared<Four>(Four{3e38f, 3e38f, -3e38f, 3e38f});
        expect(thread, has(0) ? Codes{} : Codes{Code::NothingToBuild}, std::to_string(given));
    }
}

TEST_F(Overlays, OfNumbersThatAreNoPlaneOrColor)
{
    ThreadInfo thread;
    thread.threadTexture = std::make_shared<TextureInfo>(image());
    const std::string whole = convert(thread);
    const Four planes[] = {{0, 0, 0, 1},     {-0.0f, 0, 0, 0},    {nan, 0, 1, 0},
                           {0, 0, 1, nan},   {0, infinite, 0, 0}, {1, 0, 0, -infinite},
                           {1e-40f, 0, 0, 1}};
    for (const Four& numbers : planes)
        for (auto plane : {&ThreadInfo::startClippingPlane, &ThreadInfo::endClippingPlane})
        {
            ThreadInfo clipped = thread;
            clipped.*plane = std::make_shared<Four>(numbers);
            EXPECT_EQ(convert(clipped), whole) << numbers[0] << ' ' << numbers[3];
            EXPECT_EQ(lastCodes(), Codes{Code::PlaneIgnored});
        }
    thread.baseMaterialColor = std::make_shared<Four>(Four{nan, 0, infinite, 0});
    EXPECT_EQ(convert(thread), whole);
    EXPECT_EQ(lastCodes(), Codes{Code::ValueAdjusted});
}

TEST_F(Overlays, OfNamesThatNoElementCanHave)
{
    DecalInfo decal;
    decal.texture = image();
    for (const char* name : {"a", "_", "default", "M99999999999999999999", "standard_surface"})
    {
        expect(decal, {}, name, name);
        EXPECT_NE(convert(decal, name).find('"' + std::string(name) + "_shader\""),
                  std::string::npos);
    }
    for (const auto& [name, cleaned] :
         {std::pair("3 x/y", "M3xy"), {"\xC3\x96l\x01", "l"}, {"a_b-c", "abc"}})
    {
        expect(decal, {Code::TextChanged}, name, name);
        EXPECT_EQ(convert(decal, name), convert(decal, cleaned));
    }
    for (const char* name : {"", " ", "\xC3\x96", "<>&\"", "__ "})
    {
        EXPECT_THROW(convert(decal, name), std::invalid_argument) << name;
        EXPECT_EQ(lastDiagnostics().at(0).text, "invalid material name");
    }
}

TEST_F(Overlays, AreDocumentsWithALookAndImagesBesideThem)
{
    DecalInfo decal;
    decal.texture = image();
    MaterialInfo info;
    info.name = "Logo";
    info.type = ConversionType::Decal;
    info.payload = &decal;
    EXPECT_EQ(xmlOf(buildOverlay(info, {})), convert(decal, "Logo"));
    ConverterOptions options = with(&ConverterOptions::addLook, true);
    options.copyTextures = true;
    EXPECT_TRUE(buildOverlay(info, options)->getLook("default"));
    EXPECT_TRUE(fs::exists(_folder / "Logo" / "image.png"));
    info.name = "default";
    EXPECT_FALSE(buildOverlay(info, options));
    EXPECT_EQ(lastCodes(), Codes{Code::NameTaken});
    info.name = "Logo";
    options.outputDirectory = UTF8String((_folder / "none").string());
    EXPECT_FALSE(buildOverlay(info, options));
    EXPECT_EQ(lastCodes(), Codes{Code::OutputDirectory});
    info.type = ConversionType::Undefined;
    EXPECT_FALSE(buildOverlay(info, options));
    EXPECT_EQ(lastCodes(), Codes{Code::NothingToBuild});
    info.type = ConversionType::Thread;
    info.payload = nullptr;
    EXPECT_THROW(buildOverlay(info, options), std::invalid_argument);
}

TEST_F(Overlays, AreTheSameOnEightThreads)
{
    constexpr int count = 40;
    const TextureInfo picture = image();
    const auto textOf = [&](int seed)
    {
        const auto number = static_cast<float>(seed);
        DecalInfo decal;
        decal.kind = seed % 4;
        decal.value1 = seed * 7; // some of them beyond 255
        decal.texture = picture;
        decal.texture.rotation = number / 3;
        ThreadInfo thread;
        thread.threadTexture = std::make_shared<TextureInfo>(decal.texture);
        thread.flag = seed % 3 == 0;
        thread.baseMaterialColor = std::make_shared<Four>(Four{0.1f, number / 7, 1, 0});
        thread.endClippingPlane = std::make_shared<Four>(Four{number - 5, 0, 0, number});
        const std::string name = "Overlay " + std::to_string(seed);
        const std::string text = convert(decal, name);
        return text + std::to_string(lastCodes().size()) + convert(thread, name);
    };
    std::vector<std::string> expected;
    for (int seed = 0; seed < count; ++seed)
        expected.push_back(textOf(seed));
    std::vector<int> differences(8);
    std::vector<std::thread> threads;
    for (int& different : differences)
        threads.emplace_back(
            [&, first = &different - differences.data()]
            {
                for (int i = 0; i < 5 * count; ++i)
                {
                    const auto seed = static_cast<int>((first * 5 + i) % count);
                    different += textOf(seed) != expected[static_cast<std::size_t>(seed)];
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(differences, std::vector<int>(8));
}

/// Stays last: nothing brings the converter back that is built in.
TEST_F(Overlays, AreLeftToTheConverterOfTheHost)
{
    MaterialInfo info;
    info.type = ConversionType::Thread;
    const MaterialInfo* asked = nullptr;
    _converter.RegisterConverter(info.type,
                                 [&](const MaterialInfo& given, MaterialXConverter::IString&)
                                 {
                                     asked = &given;
                                     return false;
                                 });
    StringSink sink;
    EXPECT_FALSE(_converter.Convert(info, sink)) << "without a payload, which is for it to judge";
    EXPECT_EQ(asked, &info);
    _converter.RegisterConverter(info.type, nullptr);
}

} // namespace

} // namespace vyr::hosttests
