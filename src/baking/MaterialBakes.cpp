#include "bakes/BakeLibrary.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <new>

#include <fmt/format.h>

#include "baking/BrowserImage.h"
#include "baking/ImageFile.h"
#include "baking/NoiseImage.h"
#include "baking/NormalImage.h"
#include "baking/PatternImage.h"
#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::baking
{

namespace fs = std::filesystem;
using bakes::BakeOutcome;

namespace
{

/// Puts into words what went wrong with a bake. Large images can exhaust the memory.
template <class Bake> std::string failureOf(const fs::path& file, const Bake& bake)
{
    try
    {
        bake();
        return {};
    }
    catch (const BakeError& error)
    {
        return error.what();
    }
    catch (const std::bad_alloc&)
    {
        return BakeError(file, "not enough memory").what();
    }
    catch (const std::exception& error)
    {
        return BakeError(file, error.what()).what();
    }
}

/// Without a number for the strength, all pixels would be NaN.
void checkStrength(const fs::path& file, const NormalBakeOptions& options)
{
    for (std::size_t axis = 0; axis < 2; ++axis)
    {
        const float factor =
            options.bumpAmount / options.realWorldScale[axis] * options.bumpScale[axis];
        if (options.bumpAmount != 0.0f && !std::isfinite(factor))
            throw BakeError(
                file, fmt::format("the bump amount {:g} over the real-world scale {:g} times the "
                                  "bump scale {:g} is no number",
                                  options.bumpAmount, options.realWorldScale[axis],
                                  options.bumpScale[axis]));
    }
}

/// @param destination  named in messages.
OIIO::ImageBuf checkedNoise(const NoiseBakeOptions& options, const fs::path& destination,
                            std::vector<std::string>& warnings)
{
    checkPixels(destination, options.width, options.height, options.limits);
    OIIO::ImageBuf image = bakeNoise(options);
    if (image.has_error())
        throw BakeError(destination, image.geterror() + ": " + options.type);
    if (options.levels > mostNoiseLevels)
        warnings.push_back(fmt::format("{}: {:g} noise levels are baked as {:g}",
                                       base::utf8FromPath(destination), options.levels,
                                       mostNoiseLevels));
    return image;
}

/// Whether files of this format hold whole numbers, whose steps are even to the eye only as codes of sRGB.
bool holdsWholeNumbers(const fs::path& place)
{
    const std::string extension = base::utf8FromPath(place.extension());
    constexpr const char* floats[] = {".exr", ".tif", ".tiff", ".hdr", ".pfm"};
    return std::ranges::none_of(floats, [&](const char* known)
                                { return base::equalsIgnoringCase(extension, known); });
}

/// Normals of heights whose opposite edges meet.
OIIO::ImageBuf bakeMeetingNormals(const OIIO::ImageBuf& heights, NormalBakeOptions options)
{
    const OIIO::ImageSpec& spec = heights.spec();
    OIIO::ImageBuf wide = uninitializedImage(
        "heights", OIIO::ImageSpec(spec.width + 2, spec.height + 2, 1, OIIO::TypeFloat));
    for (int y = 0; y < spec.height + 2; ++y)
    {
        const auto* from =
            static_cast<const float*>(heights.pixeladdr(0, (y + spec.height - 1) % spec.height));
        auto* to = static_cast<float*>(wide.pixeladdr(0, y));
        to[0] = from[spec.width - 1];
        std::copy_n(from, spec.width, to + 1);
        to[spec.width + 1] = from[0];
    }
    const auto share = [](int pixels)
    { return static_cast<float>(pixels) / static_cast<float>(pixels + 2); };
    options.bumpScale = {options.bumpScale[0] * share(spec.width),
                         options.bumpScale[1] * share(spec.height)};
    const OIIO::ImageBuf normals = bakeNormals(wide, options);
    OIIO::ImageSpec inner(spec.width, spec.height, 3, OIIO::TypeFloat);
    inner.attribute("oiio:ColorSpace", "Linear");
    OIIO::ImageBuf image = uninitializedImage("normal_image", inner);
    for (int y = 0; y < spec.height; ++y)
        std::copy_n(static_cast<const float*>(normals.pixeladdr(1, y + 1)), 3 * spec.width,
                    static_cast<float*>(image.pixeladdr(0, y)));
    return image;
}

BakeOutcome run(const bakes::PatternBake& bake, const BakeSettings& settings, const fs::path& place)
{
    BakeOutcome outcome;
    const auto work = [&]
    {
        const bakes::Pattern& pattern = *bake.pattern;
        checkWritable(place);
        checkPixels(place, pattern.width, pattern.height, settings.limits);
        const auto pixelsOf = [&](PatternPixels pixels)
        { return bakePattern(pattern, pixels, settings, kernels(), &outcome.droppedImages); };
        OIIO::ImageBuf image;
        if (bake.use == bakes::PatternUse::Relief)
        {
            NormalBakeOptions options;
            options.bumpAmount = bake.strength[0];
            if (bake.strength[1] != bake.strength[0])
                options.bumpScale[1] = bake.strength[1] / bake.strength[0];
            options.threads = settings.threads;
            checkStrength(place, options);
            image = bakeMeetingNormals(pixelsOf(PatternPixels::Heights), options);
        }
        else if (bake.use == bakes::PatternUse::Number)
            image = pixelsOf(PatternPixels::Number);
        else
            image = pixelsOf(holdsWholeNumbers(place) ? PatternPixels::Srgb : PatternPixels::Color);
        outcome.file = encodeFor(place, image, settings.threads);
    };
    outcome.message = failureOf(place, work);
    return outcome;
}

BakeOutcome run(const bakes::BumpBake& bake, const BakeSettings& settings, const fs::path& place)
{
    BakeOutcome outcome;
    const auto work = [&]
    {
        HeightImage height = readHeightImage(bake.image, settings.limits, settings.threads);
        height.source.attribute("texture_RealWorldScaleX", bake.realWorldScaleX);
        height.source.attribute("texture_RealWorldScaleY", bake.realWorldScaleY);
        const OIIO::ImageBuf normals =
            bakeNormalImage(height.heights, height.source, settings.threads);
        outcome.file = encodeFor(place, normals, settings.threads);
    };
    outcome.message = failureOf(bake.image, work);
    return outcome;
}

BakeOutcome run(const bakes::NoiseBumpBake& bake, const BakeSettings& settings,
                const fs::path& place)
{
    BakeOutcome outcome;
    const auto work = [&]
    {
        NormalBakeOptions options;
        options.bumpAmount = bake.bumpAmount;
        options.threads = settings.threads;
        NoiseBakeOptions noiseOptions = bake.noise;
        noiseOptions.limits = settings.limits;
        noiseOptions.threads = settings.threads;
        checkStrength(place, options);
        const OIIO::ImageBuf noise = checkedNoise(noiseOptions, place, outcome.warnings);
        outcome.file = encodeFor(place, bakeNormals(noise, options), options.threads);
    };
    outcome.message = failureOf(place, work);
    return outcome;
}

BakeOutcome bakeForMaterial(const bakes::MaterialBake& bake, const BakeSettings& settings,
                            const fs::path& place)
{
    return std::visit([&](const auto& record) { return run(record, settings, place); }, bake);
}

BakeResult bakeNormalMapFile(const fs::path& source, const fs::path& destination,
                             const NormalBakeOptions& options)
{
    const auto work = [&]
    {
        checkWritable(destination);
        checkStrength(destination, options);
        if (base::isSameFile(source, destination))
            throw BakeError(destination, "the normal map would overwrite its bump image");
        const HeightImage height = readHeightImage(source, options.limits, options.threads);
        writeImage(bakeNormals(height.heights, options), destination, options.threads);
    };
    const std::string message = failureOf(destination, work);
    return {message.empty(), message, {}};
}

BakeResult bakeNoiseFile(const fs::path& destination, const NoiseBakeOptions& options)
{
    BakeResult result;
    const auto work = [&]
    {
        checkWritable(destination);
        writeImage(checkedNoise(options, destination, result.warnings), destination,
                   options.threads);
    };
    result.message = failureOf(destination, work);
    result.success = result.message.empty();
    return result;
}

constexpr bakes::BakeLibrary library{VYR_MTLX_BAKES_STAMP, bakeForMaterial, bakeNormalMapFile,
                                     bakeNoiseFile, browserImage};

} // namespace

} // namespace vyr::MaterialTranslation::baking

const vyr::MaterialTranslation::bakes::BakeLibrary* vyrMtlxBakeLibrary()
{
    return &vyr::MaterialTranslation::baking::library;
}
