#include "baking/MaterialBakes.h"

#include <gtest/gtest.h>

#include "baking/ImageFile.h"
#include "baking/Images.h"
#include "baking/NoiseImage.h"
#include "baking/NormalImage.h"
#include "support/TemporaryFolder.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

using support::readFile;
using support::TemporaryFolder;

NoiseBakeOptions noiseOptions(int size)
{
    NoiseBakeOptions options;
    options.width = options.height = size;
    options.type = "noise_fractal";
    options.size = 10.0f;
    options.levels = 40.0f;
    options.thresholdLow = 0.1f;
    options.thresholdHigh = 0.9f;
    return options;
}

OIIO::ImageBuf read(const std::filesystem::path& path)
{
    OIIO::ImageBuf image(TemporaryFolder::utf8(path));
    image.read(0, 0, true, OIIO::TypeFloat);
    return image;
}

} // namespace

TEST(MaterialBakes, OfBumpImagesTakeTheImagesOwnAttributes)
{
    const TemporaryFolder folder;
    OIIO::ImageBuf height = picture(32, 24, 2);
    height.specmod().attribute("bump_amount", 0.5f);
    BumpBake bump;
    bump.image = folder / "bröck.v2.exr";
    writeImage(height, bump.image);
    const BakeOutcome outcome = bakeBump(bump, folder / "baked.png");
    ASSERT_EQ(outcome.status, BakeStatus::Done) << outcome.message;
    writeImage(bakeNormalImage(height, height.spec()), folder / "expected.png");
    EXPECT_EQ(readFile(folder / "baked.png"), readFile(folder / "expected.png"));

    NormalBakeOptions options;
    options.bumpAmount = 0.25f;
    options.realWorldScale = {2.0f, 4.0f};
    options.bumpScale = {1.0f, 3.0f};
    ASSERT_TRUE(bakeNormalMapFile(bump.image, folder / "normal.exr", options).success);
    EXPECT_TRUE(sameBits(read(folder / "normal.exr"), bakeNormals(height, options)));
}

TEST(MaterialBakes, OfNoiseAreItsNormals)
{
    const TemporaryFolder folder;
    const NoiseBumpBake bump{noiseOptions(64), 0.25f};
    const BakeOutcome outcome = bakeNoiseBump(bump, folder / "baked.png");
    ASSERT_EQ(outcome.status, BakeStatus::Done) << outcome.message;
    ASSERT_EQ(outcome.warnings.size(), 1U);
    EXPECT_NE(outcome.warnings[0].find("baked.png: 40 noise levels"), std::string::npos);
    ASSERT_TRUE(bakeNoiseFile(folder / "noise.exr", bump.noise).success);
    const OIIO::ImageBuf noise = read(folder / "noise.exr");
    EXPECT_TRUE(sameBits(noise, bakeNoise(bump.noise)));
    NormalBakeOptions options;
    options.bumpAmount = 0.25f;
    writeImage(bakeNormals(noise, options), folder / "expected.png");
    EXPECT_EQ(readFile(folder / "baked.png"), readFile(folder / "expected.png"));
}

TEST(MaterialBakes, ThatFailSayWhetherTheImageCouldNotBeMadeOrNotWritten)
{
    const TemporaryFolder folder;
    writeImage(picture(32, 32, 1), folder / "height.png");
    BumpBake bump{folder / "height.png"};
    BumpBake large = bump;
    large.limits.pixels = 32 * 32 - 1;
    const std::string whole = readFile(bump.image);
    const BumpBake cut{folder.write("cut.png", whole.substr(0, whole.size() / 2))};
    NoiseBumpBake noise{noiseOptions(8)};
    NoiseBumpBake unknown = noise;
    unknown.noise.type = "noise_plaid";
    NormalBakeOptions noScale;
    noScale.bumpAmount = 1.0f;
    noScale.realWorldScale = {1.0f, 0.0f};
    const auto before = folder.entries();

    using enum BakeStatus;
    const auto file = folder / "a.png";
    const auto nowhere = folder / "missing" / "a.png";
    const auto inFile = folder / "height.png" / "a.png";
    const auto expect = [](BakeStatus status, const char* reason, const BakeOutcome& outcome)
    {
        EXPECT_EQ(outcome.status, status) << reason;
        EXPECT_NE(outcome.message.find(reason), std::string::npos) << outcome.message;
    };
    expect(NotBaked, "nothing.png: no such image", bakeBump({folder / "nothing.png"}, file));
    expect(NotBaked, "cut.png: ", bakeBump(cut, file));
    expect(NotBaked, "height.png: 32 x 32 pixels are more", bakeBump(large, file));
    expect(NotBaked, "a.png: 0 x 0 is no image", bakeNoiseBump({}, file));
    expect(NotBaked, "a.png: the bump amount", bakeNoiseBump({noise.noise, infinity}, file));
    ::testing::internal::CaptureStderr();
    expect(NotBaked, "a.png: Unsupported Noise type: noise_plaid", bakeNoiseBump(unknown, file));
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Unsupported Noise type:noise_plaid\n");
    expect(NotWritten, "a.png: cannot be written: ", bakeBump(bump, nowhere));
    expect(NotWritten, "a.png: cannot be written: ", bakeNoiseBump(noise, inFile));
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    // Sanitizers end the program instead.
    noise.noise = noiseOptions(1 << 23);
    noise.noise.limits.pixels = std::uint64_t{1} << 62;
    expect(NotBaked, "a.png: not enough memory", bakeNoiseBump(noise, file));
#endif
    const std::pair<BakeResult, const char*> results[] = {
        {bakeNormalMapFile(bump.image, bump.image), "height.png: the normal map would overwrite"},
        {bakeNormalMapFile(bump.image, folder / "a.jpg"), "a.jpg: baked images are not"},
        {bakeNormalMapFile(bump.image, file, noScale), "a.png: the bump amount"},
        {bakeNoiseFile(folder / "a.txt", noise.noise), "a.txt: the extension is none of"},
    };
    for (const auto& [result, reason] : results)
        EXPECT_NE(result.message.find(reason), std::string::npos) << result.message;
    EXPECT_EQ(folder.entries(), before);
}

} // namespace vyr::MaterialTranslation::baking
