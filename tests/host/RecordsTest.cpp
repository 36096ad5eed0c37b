#include <array>
#include <cstddef>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <MaterialTranslation/ConversionType.h>
#include <MaterialTranslation/ConverterOptions.h>
#include <MaterialTranslation/DecalInfo.h>
#include <MaterialTranslation/MaterialInfo.h>
#include <MaterialTranslation/ThreadInfo.h>

namespace
{

using namespace vyr::MaterialTranslation;
using kelvor::platform::core::string::UTF8String;

template <class... Records>
constexpr bool areValueTypes = ((std::is_nothrow_move_constructible_v<Records> &&
                                 std::is_nothrow_move_assignable_v<Records>) &&
                                ...);
static_assert(areValueTypes<ConverterOptions, MaterialInfo, DecalInfo, ThreadInfo, TextureInfo>);
static_assert(std::is_same_v<std::underlying_type_t<ConversionType>, std::int32_t>);
static_assert(static_cast<int>(ConversionType::Undefined) == 0 &&
              static_cast<int>(ConversionType::Decal) == 3 &&
              static_cast<int>(ConversionType::Thread) == 4);

auto fieldsOf(const ConverterOptions& o)
{
    return std::tuple(o.outputDirectory.str(), o.imageSize, o.addLook, o.copyTextures, o.verbose,
                      o.writeMtlxFile, o.useAssetIdInName, o.colorMode, o.roughnessMode,
                      o.translationPath);
}

auto fieldsOf(const DecalInfo& d)
{
    const TextureInfo& t = d.texture;
    return std::tuple(d.kind, t.path.str(), t.realWorldOffsetU, t.realWorldOffsetV,
                      t.realWorldScaleU, t.realWorldScaleV, t.unit, t.uvOffsetU, t.uvOffsetV,
                      t.uvScaleU, t.uvScaleV, t.rotation, t.auxValue, d.value0, d.value1, d.value2);
}

auto fieldsOf(const MaterialInfo& m)
{
    return std::tuple(m.name.str(), m.type, m.payload);
}

auto fieldsOf(const ThreadInfo& t)
{
    return std::tuple(t.threadTexture, t.normalTexture, t.flag, t.baseMaterialColor,
                      t.startClippingPlane, t.endClippingPlane);
}

/// A record is copied and moved with every field.
template <class Record> void expectTravels(Record record)
{
    const auto expected = fieldsOf(record);
    const Record copy(record);
    Record assigned;
    assigned = record;
    Record moved(std::move(record));
    EXPECT_TRUE(fieldsOf(copy) == expected && fieldsOf(assigned) == expected);
    EXPECT_EQ(fieldsOf(moved), expected);
    Record moveAssigned;
    moveAssigned = std::move(moved);
    EXPECT_EQ(fieldsOf(moveAssigned), expected);
}

TEST(Records, StartAtTheirDefaultsAndTravelWhole)
{
    ConverterOptions options;
    EXPECT_EQ(fieldsOf(options), std::tuple("", 1024u, false, false, false, false, false, 2, 2, 0));
    options.outputDirectory = UTF8String("folder");
    options.imageSize = 1ull << 40;
    options.addLook = options.verbose = options.useAssetIdInName = true;
    options.colorMode = -1;
    options.roughnessMode = 7;
    options.translationPath = 1;
    expectTravels(options);

    DecalInfo decal;
    EXPECT_EQ(fieldsOf(decal), std::tuple(1, "", 0, 0, 1, 1, 3, 0, 0, 1, 1, 0, 0, 0, 0, 0));
    decal.texture.path = UTF8String("label.png");
    decal.texture.rotation = 90.0f;
    decal.kind = decal.texture.auxValue = decal.value2 = -5;
    expectTravels(decal);

    MaterialInfo info;
    EXPECT_EQ(fieldsOf(info), std::tuple("", ConversionType::Undefined, nullptr));
    info.payload = &decal;
    expectTravels(info);

    ThreadInfo thread;
    EXPECT_EQ(fieldsOf(thread), fieldsOf(ThreadInfo{}));
    EXPECT_FALSE(thread.threadTexture || thread.flag || thread.endClippingPlane);
    thread.threadTexture = thread.normalTexture = std::make_shared<TextureInfo>();
    thread.baseMaterialColor = std::make_shared<std::array<float, 4>>();
    thread.startClippingPlane = thread.endClippingPlane = thread.baseMaterialColor;
    thread.flag = true;
    expectTravels(thread);
    const ThreadInfo taken = std::move(thread);
    EXPECT_FALSE(thread.threadTexture || thread.endClippingPlane) << "handed over when moved";
}

/// Hosts of other compilers' builds rely on the places of the fields.
TEST(Records, HaveTheExportedLayout)
{
    const auto offsetIn = [](const auto& record, const auto& field)
    { return reinterpret_cast<const char*>(&field) - reinterpret_cast<const char*>(&record); };
    constexpr std::ptrdiff_t text = sizeof(UTF8String);
    const ConverterOptions o;
    EXPECT_EQ(offsetIn(o, o.outputDirectory), 0);
    EXPECT_EQ(offsetIn(o, o.imageSize), text);
    EXPECT_EQ(offsetIn(o, o.addLook), text + 8);
    EXPECT_EQ(offsetIn(o, o.copyTextures), text + 9);
    EXPECT_EQ(offsetIn(o, o.verbose), text + 10);
    EXPECT_EQ(offsetIn(o, o.writeMtlxFile), text + 11);
    EXPECT_EQ(offsetIn(o, o.useAssetIdInName), text + 12);
    EXPECT_EQ(offsetIn(o, o.colorMode), text + 16);
    EXPECT_EQ(offsetIn(o, o.roughnessMode), text + 20);
    EXPECT_EQ(offsetIn(o, o.translationPath), text + 24);
    const DecalInfo d;
    EXPECT_EQ(offsetIn(d, d.texture), 8);
    EXPECT_EQ(offsetIn(d, d.texture.unit), 8 + text + 16);
    EXPECT_EQ(offsetIn(d, d.texture.auxValue), 8 + text + 40);
    EXPECT_EQ(offsetIn(d, d.value2), 16 + static_cast<std::ptrdiff_t>(sizeof(TextureInfo)));
}

} // namespace
