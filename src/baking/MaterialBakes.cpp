#include "baking/MaterialBakes.h"

#include <cmath>
#include <exception>
#include <new>
#include <utility>

#include <fmt/format.h>

#include "baking/ImageFile.h"
#include "baking/NoiseImage.h"
#include "baking/NormalImage.h"
#include "base/Paths.h"

namespace vyr::MaterialTranslation
{

namespace baking
{

namespace fs = std::filesystem;

namespace
{

/// Runs a bake, which adds to the warnings, and puts into words what went wrong. Large images can exhaust the
/// memory.
template <class Bake> BakeOutcome outcomeOf(const fs::path& file, const Bake& bake)
{
    BakeOutcome outcome;
    try
    {
        bake(outcome.warnings);
        outcome.status = BakeStatus::Done;
    }
    catch (const WriteError& error)
    {
        outcome.status = BakeStatus::NotWritten;
        outcome.message = error.what();
    }
    catch (const BakeError& error)
    {
        outcome.message = error.what();
    }
    catch (const std::bad_alloc&)
    {
        outcome.message = BakeError(file, "not enough memory").what();
    }
    catch (const std::exception& error)
    {
        outcome.message = BakeError(file, error.what()).what();
    }
    return outcome;
}

BakeResult resultOf(BakeOutcome outcome)
{
    return {outcome.status == BakeStatus::Done, std::move(outcome.message),
            std::move(outcome.warnings)};
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

} // namespace

BakeOutcome bakeBump(const BumpBake& bake, const fs::path& destination)
{
    return outcomeOf(bake.image,
                     [&](std::vector<std::string>&)
                     {
                         HeightImage height =
                             readHeightImage(bake.image, bake.limits, bake.threads);
                         height.source.attribute("texture_RealWorldScaleX", bake.realWorldScaleX);
                         height.source.attribute("texture_RealWorldScaleY", bake.realWorldScaleY);
                         writeImage(bakeNormalImage(height.heights, height.source, bake.threads),
                                    destination, bake.threads);
                     });
}

BakeOutcome bakeNoiseBump(const NoiseBumpBake& bake, const fs::path& destination)
{
    return outcomeOf(destination,
                     [&](std::vector<std::string>& warnings)
                     {
                         NormalBakeOptions options;
                         options.bumpAmount = bake.bumpAmount;
                         options.threads = bake.noise.threads;
                         checkStrength(destination, options);
                         const OIIO::ImageBuf noise =
                             checkedNoise(bake.noise, destination, warnings);
                         writeImage(bakeNormals(noise, options), destination, options.threads);
                     });
}

} // namespace baking

BakeResult bakeNormalMapFile(const std::filesystem::path& source,
                             const std::filesystem::path& destination,
                             const NormalBakeOptions& options)
{
    using namespace baking;
    return resultOf(outcomeOf(
        destination,
        [&](std::vector<std::string>&)
        {
            checkWritable(destination);
            checkStrength(destination, options);
            if (base::isSameFile(source, destination))
                throw BakeError(destination, "the normal map would overwrite its bump image");
            const HeightImage height = readHeightImage(source, options.limits, options.threads);
            writeImage(bakeNormals(height.heights, options), destination, options.threads);
        }));
}

BakeResult bakeNoiseFile(const std::filesystem::path& destination, const NoiseBakeOptions& options)
{
    using namespace baking;
    return resultOf(outcomeOf(destination,
                              [&](std::vector<std::string>& warnings)
                              {
                                  checkWritable(destination);
                                  writeImage(checkedNoise(options, destination, warnings),
                                             destination, options.threads);
                              }));
}

} // namespace vyr::MaterialTranslation
