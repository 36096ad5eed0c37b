#include <cstddef>
#include <cstring>
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

template <class Record>
constexpr bool isValueType =
    std::is_default_constructible_v<Record> && std::is_copy_constructible_v<Record> &&
    std::is_copy_assignable_v<Record> && std::is_nothrow_move_constructible_v<Record> &&
    std::is_nothrow_move_assignable_v<Record>;

static_assert(isValueType<ConverterOptions> && isValueType<MaterialInfo> &&
              isValueType<DecalInfo> && isValueType<ThreadInfo> && isValueType<TextureInfo>);
static_assert(std::is_same_v<std::underlying_type_t<ConversionType>, std::int32_t>);
static_assert(static_cast<int>(ConversionType::Undefined) == 0 &&
              static_cast<int>(ConversionType::Decal) == 3 &&
              static_cast<int>(ConversionType::Thread) == 4);

/// Distance in bytes of a field from the start of its record.
template <class Record, class Field> std::size_t offsetIn(const Record& record, const Field& field)
{
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&field) -
                                    reinterpret_cast<const char*>(&record));
}

ConverterOptions unusualOptions()
{
    ConverterOptions options;
    options.outputDirectory = UTF8String("folder");
    options.imageSize = 1ull << 40;
    options.addLook = options.verbose = options.useAssetIdInName = true;
    options.colorMode = -1;
    options.roughnessMode = 7;
    options.translationPath = 1;
    return options;
}

void expectUnusual(const ConverterOptions& options)
{
    EXPECT_EQ(options.outputDirectory.str(), "folder");
    EXPECT_EQ(options.imageSize, 1ull << 40);
    EXPECT_TRUE(options.addLook && options.verbose && options.useAssetIdInName);
    EXPECT_FALSE(options.copyTextures || options.writeMtlxFile);
    EXPECT_EQ(options.colorMode, -1);
    EXPECT_EQ(options.roughnessMode, 7);
    EXPECT_EQ(options.translationPath, 1);
}

TEST(Records, OptionsStartAtTheirDefaults)
{
    const ConverterOptions options;
    EXPECT_TRUE(options.outputDirectory.empty());
    EXPECT_EQ(options.imageSize, 1024u);
    EXPECT_FALSE(options.addLook || options.copyTextures || options.verbose ||
                 options.writeMtlxFile || options.useAssetIdInName);
    EXPECT_EQ(options.colorMode, 2);
    EXPECT_EQ(options.roughnessMode, 2);
    EXPECT_EQ(options.translationPath, 0);
}

TEST(Records, OptionsCopyAndMoveEveryField)
{
    ConverterOptions source = unusualOptions();
    const ConverterOptions copy(source);
    ConverterOptions assigned;
    assigned = source;
    const ConverterOptions moved(std::move(source));
    ConverterOptions moveAssigned;
    moveAssigned = std::move(assigned);
    expectUnusual(copy);
    expectUnusual(moved);
    expectUnusual(moveAssigned);
}

/// Hosts of other compilers' builds rely on the places of the fields.
TEST(Records, LayoutIsTheExportedOne)
{
    const ConverterOptions options;
    const std::size_t flags = offsetIn(options, options.addLook);
    EXPECT_EQ(offsetIn(options, options.outputDirectory), 0u);
    EXPECT_EQ(offsetIn(options, options.imageSize), sizeof(UTF8String));
    EXPECT_EQ(flags, sizeof(UTF8String) + 8);
    EXPECT_EQ(offsetIn(options, options.copyTextures), flags + 1);
    EXPECT_EQ(offsetIn(options, options.verbose), flags + 2);
    EXPECT_EQ(offsetIn(options, options.writeMtlxFile), flags + 3);
    EXPECT_EQ(offsetIn(options, options.useAssetIdInName), flags + 4);
    EXPECT_EQ(offsetIn(options, options.colorMode), flags + 8);
    EXPECT_EQ(offsetIn(options, options.roughnessMode), flags + 12);
    EXPECT_EQ(offsetIn(options, options.translationPath), flags + 16);

    const DecalInfo decal;
    EXPECT_EQ(offsetIn(decal, decal.kind), 0u);
    EXPECT_EQ(offsetIn(decal, decal.texture), 8u);
    EXPECT_EQ(offsetIn(decal, decal.value0), 8 + sizeof(TextureInfo));
    EXPECT_EQ(offsetIn(decal, decal.value2), offsetIn(decal, decal.value0) + 8);
    EXPECT_EQ(offsetIn(decal.texture, decal.texture.unit), sizeof(UTF8String) + 16);
    EXPECT_EQ(offsetIn(decal.texture, decal.texture.auxValue), sizeof(UTF8String) + 40);
}

TEST(Records, DecalStartsAtItsDefaultsAndIsCopiedWhole)
{
    DecalInfo decal;
    EXPECT_EQ(decal.kind, 1);
    const TextureInfo& texture = decal.texture;
    EXPECT_TRUE(texture.path.empty());
    EXPECT_EQ(texture.realWorldOffsetU, 0.0f);
    EXPECT_EQ(texture.realWorldOffsetV, 0.0f);
    EXPECT_EQ(texture.realWorldScaleU, 1.0f);
    EXPECT_EQ(texture.realWorldScaleV, 1.0f);
    EXPECT_EQ(texture.unit, 3);
    EXPECT_EQ(texture.uvOffsetU, 0.0f);
    EXPECT_EQ(texture.uvOffsetV, 0.0f);
    EXPECT_EQ(texture.uvScaleU, 1.0f);
    EXPECT_EQ(texture.uvScaleV, 1.0f);
    EXPECT_EQ(texture.rotation, 0.0f);
    EXPECT_EQ(texture.auxValue, 0);
    EXPECT_EQ(decal.value0 | decal.value1 | decal.value2, 0);

    decal.kind = 3;
    decal.texture.path = UTF8String("label.png");
    decal.texture.rotation = 90.0f;
    decal.value2 = -5;
    const DecalInfo copy = decal;
    const DecalInfo moved = std::move(decal);
    for (const DecalInfo* record : {&copy, &moved})
    {
        EXPECT_EQ(record->kind, 3);
        EXPECT_EQ(record->texture.path.str(), "label.png");
        EXPECT_EQ(record->texture.rotation, 90.0f);
        EXPECT_EQ(record->value2, -5);
    }
}

TEST(Records, MaterialInfoSharesItsPayload)
{
    MaterialInfo info;
    EXPECT_TRUE(info.name.empty());
    EXPECT_EQ(info.type, ConversionType::Undefined);
    EXPECT_EQ(info.payload, nullptr);

    int payload = 0;
    info.payload = &payload;
    const MaterialInfo first(info);
    MaterialInfo second;
    second = first;
    EXPECT_EQ(first.payload, &payload);
    EXPECT_EQ(second.payload, &payload);
    const MaterialInfo moved(std::move(info));
    EXPECT_EQ(moved.payload, &payload);
    EXPECT_EQ(info.payload, &payload) << "a borrowed pointer stays in the source";
}

ThreadInfo fullThread()
{
    ThreadInfo thread;
    thread.threadTexture = std::make_shared<TextureInfo>();
    thread.normalTexture = std::make_shared<TextureInfo>();
    thread.flag = true;
    thread.baseMaterialColor = std::make_shared<std::array<float, 4>>();
    thread.startClippingPlane = std::make_shared<std::array<float, 4>>();
    thread.endClippingPlane = std::make_shared<std::array<float, 4>>();
    return thread;
}

TEST(Records, ThreadSharesWhenCopiedAndHandsOverWhenMoved)
{
    const ThreadInfo empty;
    EXPECT_FALSE(empty.threadTexture || empty.normalTexture || empty.baseMaterialColor ||
                 empty.startClippingPlane || empty.endClippingPlane || empty.flag);

    ThreadInfo thread = fullThread();
    const ThreadInfo copy = thread;
    EXPECT_EQ(copy.threadTexture, thread.threadTexture);
    EXPECT_EQ(copy.endClippingPlane.use_count(), 2);

    const ThreadInfo moved = std::move(thread);
    EXPECT_FALSE(thread.threadTexture || thread.normalTexture || thread.baseMaterialColor ||
                 thread.startClippingPlane || thread.endClippingPlane);
    EXPECT_TRUE(moved.flag);
    EXPECT_EQ(moved.threadTexture.use_count(), 2);
    EXPECT_EQ(moved.normalTexture.use_count(), 2);
    EXPECT_EQ(moved.startClippingPlane.use_count(), 2);
}

} // namespace
