#include "baking/BakedFiles.h"

#include "baking/BakeError.h"
#include "baking/HeightImage.h"
#include "baking/ImageFile.h"
#include "baking/NoiseImage.h"
#include "baking/NormalImage.h"
#include "base/Paths.h"
#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>

namespace vyr::MaterialTranslation
{
namespace baking
{
namespace
{
constexpr OIIO::TypeDesc kPairType(OIIO::TypeDesc::FLOAT, 2);
constexpr OIIO::TypeDesc kColorType(OIIO::TypeDesc::FLOAT, 3);

/// Runs a bake and puts into words what went wrong. Large images can exhaust the memory.
template <class Bake> BakeResult resultOf(const std::filesystem::path& file, const Bake& bake)
{
    BakeResult result;
    try
    {
        bake(result.warnings);
        result.success = true;
    }
    catch (const BakeError& error)
    {
        result.message = error.what();
    }
    catch (const std::bad_alloc&)
    {
        result.message = fmt::format("{}: not enough memory", utf8(file));
    }
    catch (const std::exception& error)
    {
        result.message = fmt::format("{}: {}", utf8(file), error.what());
    }
    return result;
}

OIIO::ImageSpec normalParameters(const NormalBakeOptions& options)
{
    OIIO::ImageSpec spec;
    spec.attribute("bump_amount", options.bumpAmount);
    spec.attribute("real_world_scale", kPairType, options.realWorldScale.data());
    spec.attribute("bump_scale", kPairType, options.bumpScale.data());
    return spec;
}

OIIO::ImageSpec noiseParameters(const NoiseBakeOptions& options)
{
    OIIO::ImageSpec spec(options.width, options.height, 1, OIIO::TypeFloat);
    spec.attribute("noise:type", options.type);
    if (options.color1)
    {
        spec.attribute("noise:color1", kColorType, options.color1->data());
    }
    if (options.color2)
    {
        spec.attribute("noise:color2", kColorType, options.color2->data());
    }
    spec.attribute("noise:size", options.size);
    spec.attribute("noise:thresholdLow", options.thresholdLow);
    spec.attribute("noise:thresholdHigh", options.thresholdHigh);
    spec.attribute("noise:levels", options.levels);
    spec.attribute("noise:phase", options.phase);
    return spec;
}

/// Without a number for the strength, all pixels would be NaN.
void checkStrength(const std::filesystem::path& file, const NormalBakeOptions& options)
{
    for (std::size_t axis = 0; axis < 2; ++axis)
    {
        const float factor =
            options.bumpAmount / options.realWorldScale[axis] * options.bumpScale[axis];
        if (options.bumpAmount != 0.0f && !std::isfinite(factor))
        {
            throw BakeError(
                fmt::format("{}: the bump amount {:g} over the real-world scale {:g} times the "
                            "bump scale {:g} is no number",
                            utf8(file), options.bumpAmount, options.realWorldScale[axis],
                            options.bumpScale[axis]));
        }
    }
}

void checkNotSame(const std::filesystem::path& source, const std::filesystem::path& destination)
{
    std::error_code error;
    if (std::filesystem::equivalent(source, destination, error) && !error)
    {
        throw BakeError(
            fmt::format("{}: the normal map would overwrite its bump image", utf8(destination)));
    }
}

/// The place for a baked file: the wished one, or the first with a number that replaces no file to be kept.
std::filesystem::path placeBeside(const std::filesystem::path& wished,
                                  const std::vector<std::filesystem::path>& kept)
{
    std::filesystem::path place = wished;
    const auto isPlace = [&](const std::filesystem::path& file)
    {
        std::error_code error;
        return std::filesystem::equivalent(file, place, error) && !error;
    };
    for (int number = 2; std::ranges::any_of(kept, isPlace); ++number)
    {
        place = wished.parent_path() / wished.stem();
        place += fmt::format("-{}", number);
        place += wished.extension();
    }
    return place;
}

OIIO::ImageBuf bakeNoise(const NoiseBakeOptions& options, const std::filesystem::path& destination,
                         std::vector<std::string>& warnings)
{
    const OIIO::ImageSpec parameters = noiseParameters(options);
    checkPixels(utf8(destination), options.width, options.height, options.limits);
    OIIO::ImageBuf image = bakeNoiseImage(parameters, options.threads);
    if (image.has_error())
    {
        throw BakeError(
            fmt::format("{}: {}: {}", utf8(destination), image.geterror(), options.type));
    }
    for (const std::string& warning : noiseWarnings(parameters))
    {
        warnings.push_back(fmt::format("{}: {}", utf8(destination), warning));
    }
    return image;
}
} // namespace

BakedFile bakeBumpImage(const BumpImage& bump)
{
    BakedFile baked;
    baked.result =
        resultOf(bump.image,
                 [&](std::vector<std::string>&)
                 {
                     HeightImage height = readHeightImage(bump.image, bump.limits, bump.threads);
                     height.source.attribute("texture_RealWorldScaleX", bump.realWorldScaleX);
                     height.source.attribute("texture_RealWorldScaleY", bump.realWorldScaleY);
                     const OIIO::ImageBuf normals =
                         bakeNormalImage(height.heights, height.source, bump.threads);
                     const std::string name =
                         base::safeName(utf8(bump.image.stem()) + "_normalmap.png");
                     std::filesystem::create_directories(bump.folder);
                     const std::filesystem::path path =
                         placeBeside(bump.folder / base::pathFromUtf8(name), bump.kept);
                     writeImage(normals, path, bump.threads);
                     baked.path = path;
                 });
    return baked;
}

BakedFile bakeNoiseBump(const NoiseBump& bump)
{
    BakedFile baked;
    const std::string name = fmt::format("{}_{}normal_map.png", bump.nodeName, bump.noise.width);
    const std::filesystem::path path = placeBeside(
        bump.folder / std::filesystem::path(std::u8string(name.begin(), name.end())), bump.kept);
    baked.result = resultOf(path,
                            [&](std::vector<std::string>& warnings)
                            {
                                NormalBakeOptions options;
                                options.bumpAmount = bump.bumpAmount;
                                checkStrength(path, options);
                                const OIIO::ImageBuf noise = bakeNoise(bump.noise, path, warnings);
                                const OIIO::ImageBuf normals = bakeNormalImage(
                                    noise, normalParameters(options), bump.noise.threads);
                                std::filesystem::create_directories(bump.folder);
                                writeImage(normals, path, bump.noise.threads);
                                baked.path = path;
                            });
    return baked;
}
} // namespace baking

BakeResult bakeNormalMapFile(const std::filesystem::path& source,
                             const std::filesystem::path& destination,
                             const NormalBakeOptions& options)
{
    using namespace baking;
    return resultOf(
        destination,
        [&](std::vector<std::string>&)
        {
            checkWritable(destination);
            checkStrength(destination, options);
            checkNotSame(source, destination);
            const HeightImage height = readHeightImage(source, options.limits, options.threads);
            writeImage(bakeNormalImage(height.heights, normalParameters(options), options.threads),
                       destination, options.threads);
        });
}

BakeResult bakeNoiseFile(const std::filesystem::path& destination, const NoiseBakeOptions& options)
{
    using namespace baking;
    return resultOf(destination,
                    [&](std::vector<std::string>& warnings)
                    {
                        checkWritable(destination);
                        writeImage(bakeNoise(options, destination, warnings), destination,
                                   options.threads);
                    });
}
} // namespace vyr::MaterialTranslation
