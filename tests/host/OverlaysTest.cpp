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

using Code = DiagnosticCode;
using Four = std::array<float, 4>;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();
constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();

std::shared_ptr<Four> four(float a, float b, float c, float d)
{
    return std::make_shared<Four>(Four{a, b, c, d});
}

class Overlays : public HostTest
{
  protected:
    Overlays() { _decal.texture.path = VYR_SOURCE_DIR "/samples/textures/arrow_decal.png"; }

    template <class Payload> std::string convert(Payload payload, const std::string& name = "Logo")
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

    /// Expects a sound document, or an empty one, and these codes.
    template <class Payload> void expect(const Payload& payload, const Codes& codes, long number)
    {
        const std::string text = convert(payload);
        EXPECT_EQ(lastCodes(), codes) << number;
        const mx::DocumentPtr document = mx::createDocument();
        mx::readFromXmlString(document, text);
        EXPECT_TRUE(isSound(document)) << number;
        const bool isEmpty = !codes.empty() && codes.back() == Code::NothingToBuild;
        EXPECT_EQ(document->getChildren().empty(), isEmpty) << number;
        EXPECT_EQ(text.find("nan") & text.find("\"inf"), text.npos) << number;
    }

    ConverterOptions _options = with(&ConverterOptions::copyTextures, true);
    MaterialXConverter _converter{_options};
    DecalInfo _decal;
    const TextureInfo& _image = _decal.texture;
};

TEST_F(Overlays, OfDecalsThatNobodyExpects)
{
    const std::pair<std::function<void(DecalInfo&)>, Codes> changes[] = {
        {[](DecalInfo& d) { d.kind = d.value0 = d.texture.unit = least; }, {}},
        {[](DecalInfo& d) { d.kind = 3, d.value0 = least, d.value1 = 256; },
         {Code::ValueAdjusted, Code::ValueAdjusted}},
        {[](DecalInfo& d) { d.texture.rotation = nan; }, {Code::ValueAdjusted}},
        {[](DecalInfo& d) { d.texture.uvScale = {0.0f, -infinite}; }, {Code::ValueAdjusted}},
        {[](DecalInfo& d) { d.texture.realWorldOffset = {3e38f, -1e-45f}; }, {}},
        {[](DecalInfo& d) { d.texture.path = "a\x01\xFF.png"; },
         {Code::TextureNameRefused, Code::NothingToBuild}},
        {[](DecalInfo& d) { d.texture.path = UTF8String(std::string(100000, 'x')); },
         {Code::TextureFileMissing}},
    };
    for (const auto& change : changes)
    {
        DecalInfo decal = _decal;
        change.first(decal);
        expect(decal, change.second, &change - changes);
    }
}

TEST_F(Overlays, OfThreadsWithPointersMissing)
{
    for (unsigned given = 0; given < 64; ++given)
    {
        const auto has = [&](unsigned bit) { return (given >> bit & 1) != 0; };
        ThreadInfo thread;
        thread.threadTexture = has(0) ? std::make_shared<TextureInfo>(_image) : nullptr;
        thread.normalTexture = has(1) ? std::make_shared<TextureInfo>(_image) : nullptr;
        thread.flag = has(2);
        thread.baseMaterialColor = has(3) ? four(0.5f, 0.5f, 0.5f, nan) : nullptr;
        thread.startClippingPlane = has(4) ? four(0, 0, 1e-40f, 0) : nullptr;
        thread.endClippingPlane = has(5) ? four(3e38f, 3e38f, -3e38f, 3e38f) : nullptr;
        expect(thread, has(0) ? Codes{} : Codes{Code::NothingToBuild}, given);
    }
}

TEST_F(Overlays, OfNumbersThatAreNoPlaneOrColor)
{
    ThreadInfo thread;
    thread.threadTexture = std::make_shared<TextureInfo>(_image);
    const std::string whole = convert(thread);
    for (const auto& plane :
         {four(0, -0.0f, 0, 1), four(nan, 0, 1, 0), four(0, 0, 1, nan), four(0, infinite, 0, 0),
          four(1, 0, 0, -infinite), four(1e-40f, 0, 0, 1)})
    {
        ThreadInfo clipped = thread;
        clipped.startClippingPlane = clipped.endClippingPlane = plane;
        EXPECT_EQ(convert(clipped), whole) << (*plane)[0] << ' ' << (*plane)[3];
        EXPECT_EQ(lastCodes(), Codes(2, Code::PlaneIgnored));
    }
    thread.baseMaterialColor = four(0, infinite, nan, 0);
    EXPECT_EQ(convert(thread), whole);
    EXPECT_EQ(lastCodes(), Codes{Code::ValueAdjusted});
}

TEST_F(Overlays, OfNamesThatNoElementCanHave)
{
    for (const std::string name :
         {"_", "default", "M99999999999999999999", "3 x/y", "\xC3\x96l\x01"})
    {
        const std::string text = convert(_decal, name);
        const bool isKept = text.find('"' + name + "_shader\"") != text.npos;
        EXPECT_EQ(lastCodes(), Codes(isKept ? 0 : 1, Code::TextChanged)) << name;
        EXPECT_EQ(isKept, name.find_first_of(" \xC3") == name.npos) << text;
        EXPECT_EQ(text.find("\"M3xy\"") != text.npos, name == "3 x/y");
    }
    for (const char* name : {"", " ", "\xC3\x96", "<>&\"", "__ "})
        EXPECT_THROW(convert(_decal, name), std::invalid_argument) << name;
}

/// The golden cases have what can be built; this cannot.
TEST_F(Overlays, AreNoDocumentsWithoutNameFolderOrType)
{
    _options.addLook = true;
    MaterialInfo info;
    info.payload = &_decal;
    for (const auto& [name, type, code] :
         {std::tuple("Logo", ConversionType::Undefined, Code::NothingToBuild),
          {"default", ConversionType::Decal, Code::NameTaken},
          {"Logo", ConversionType::Decal, Code::OutputDirectory}})
    {
        info.name = name;
        info.type = type;
        EXPECT_FALSE(buildOverlay(info, _options));
        EXPECT_EQ(lastCodes(), Codes{code});
        _options.outputDirectory = "none";
    }
}

TEST_F(Overlays, AreTheSameOnEightThreads)
{
    constexpr std::size_t count = 40;
    const auto textOf = [&](std::size_t seed)
    {
        const auto number = static_cast<float>(seed);
        DecalInfo decal = _decal;
        decal.kind = static_cast<std::int32_t>(seed % 4);
        decal.value1 = static_cast<std::int32_t>(seed * 7); // some of them beyond 255
        decal.texture.rotation = number / 3;
        ThreadInfo thread;
        thread.threadTexture = std::make_shared<TextureInfo>(decal.texture);
        thread.endClippingPlane = four(number - 5, 0, 0, number);
        const std::string text = convert(decal, "O" + std::to_string(seed));
        return text + std::to_string(lastCodes().size()) + convert(thread);
    };
    std::array<std::string, count> expected;
    for (std::size_t seed = 0; seed < count; ++seed)
        expected[seed] = textOf(seed);
    std::vector<int> differences(8);
    std::vector<std::thread> threads;
    for (std::size_t first = 0; first < differences.size(); ++first)
        threads.emplace_back(
            [&, first]
            {
                for (std::size_t seed = first * 5; seed < first * 5 + 5 * count; ++seed)
                    differences[first] += textOf(seed % count) != expected[seed % count];
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(differences, std::vector<int>(8));
}

/// Stays last: nothing brings back the converter that is built in.
TEST_F(Overlays, AreLeftToTheConverterOfTheHost)
{
    const auto refuse = [](const MaterialInfo&, MaterialXConverter::IString&) { return false; };
    _converter.RegisterConverter(ConversionType::Thread, refuse);
    MaterialInfo info;
    info.type = ConversionType::Thread;
    StringSink sink;
    EXPECT_FALSE(_converter.Convert(info, sink)) << "without a payload, which is for it to judge";
}

} // namespace

} // namespace vyr::hosttests
