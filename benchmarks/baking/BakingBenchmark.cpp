#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <OpenImageIO/imageio.h>
#include <benchmark/benchmark.h>

#include <MaterialTranslation/Bakes.h>

#include "PatternReference.h"
#include "Reference.h"
#include "bakes/BakeLibrary.h"
#include "baking/ImageFile.h"
#include "baking/NoiseImage.h"
#include "baking/NormalImage.h"
#include "baking/PatternImage.h"

/// @file
/// Every bake, every kernel set and the road from file to file, beside the plain reference and beside the memory
/// traffic alone. Names are <what>/<by whom>/<size>/<threads>, which compare.py turns into a table of ratios.
namespace vyr::MaterialTranslation::baking
{

namespace
{

using benchmark::State;

constexpr int sizes[] = {64, 1024, 2048, 4096, 8192};
constexpr int threadCounts[] = {1, 2};

void addBenchmark(const std::string& name, int size, int threads, bool once,
                  const std::function<void()>& prepare, const std::function<void()>& work)
{
    const std::string whole = name + '/' + std::to_string(size) + '/' + std::to_string(threads);
    auto* added = benchmark::RegisterBenchmark(
        whole.c_str(),
        [=](State& state)
        {
            prepare();
            for (auto _ : state)
                work();
            const double pixels = static_cast<double>(size) * size;
            state.counters["Mpixel/s"] =
                benchmark::Counter(pixels * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
        });
    added->UseRealTime()->Unit(benchmark::kMillisecond);
    if (once)
        added->Iterations(1);
}

/// The floats that the kernels work on, made when first needed and kept for the next benchmark of that size.
struct Buffers
{
    OIIO::ImageBuf heights;
    OIIO::ImageBuf normals;
    OIIO::ImageBuf noise;
};

Buffers& buffers(int size)
{
    static Buffers current;
    if (current.heights.spec().width != size)
    {
        current = Buffers();
        current.heights.reset(OIIO::ImageSpec(size, size, 1, OIIO::TypeFloat));
        current.normals.reset(OIIO::ImageSpec(size, size, 3, OIIO::TypeFloat));
        current.noise.reset(OIIO::ImageSpec(size, size, 1, OIIO::TypeFloat));
        for (OIIO::ImageBuf::Iterator<float> i(current.heights); !i.done(); ++i)
            i[0] = static_cast<float>((i.x() * 7919 + i.y() * 104729) % 256) / 255.0f;
    }
    return current;
}

const float* heightRow(const OIIO::ImageBuf& heights, int y)
{
    return static_cast<const float*>(
        heights.pixeladdr(0, std::clamp(y, 0, heights.spec().height - 1)));
}

void runNormalKernel(const KernelSet& set, int size, int threads)
{
    Buffers& b = buffers(size);
    forEachRowBlock(size, size, threads,
                    [&](int yBegin, int yEnd)
                    {
                        for (int y = yBegin; y < yEnd; ++y)
                            set.normalRow({heightRow(b.heights, y - 1), heightRow(b.heights, y),
                                           heightRow(b.heights, y + 1)},
                                          static_cast<std::size_t>(size), {1.0f, 1.0f},
                                          static_cast<float*>(b.normals.pixeladdr(0, y)));
                    });
}

/// One float read and three written for each pixel, as the normal map needs.
void moveNormalBytes(int size, int threads)
{
    Buffers& b = buffers(size);
    const std::size_t rowBytes = static_cast<std::size_t>(size) * sizeof(float);
    forEachRowBlock(size, size, threads,
                    [&](int yBegin, int yEnd)
                    {
                        for (int y = yBegin; y < yEnd; ++y)
                        {
                            auto* out = static_cast<std::byte*>(b.normals.pixeladdr(0, y));
                            for (std::size_t copy = 0; copy < 3; ++copy)
                                std::memcpy(out + copy * rowBytes, heightRow(b.heights, y),
                                            rowBytes);
                        }
                    });
}

void fillNoiseBytes(int size, int threads)
{
    Buffers& b = buffers(size);
    const std::size_t rowBytes = static_cast<std::size_t>(size) * sizeof(float);
    forEachRowBlock(size, size, threads,
                    [&](int yBegin, int yEnd)
                    {
                        for (int y = yBegin; y < yEnd; ++y)
                            std::memset(b.noise.pixeladdr(0, y), y & 0xFF, rowBytes);
                    });
}

struct NoiseKind
{
    const char* name;
    NoiseBakeOptions noise;
    int octaves;
};

std::vector<NoiseKind> noiseKinds()
{
    const auto kind = [](const char* type, float levels, float phase)
    {
        NoiseBakeOptions noise;
        noise.type = type;
        noise.size = 1.0f;
        noise.levels = levels;
        noise.phase = phase;
        noise.thresholdHigh = 1.0f;
        return noise;
    };
    return {{"regular", kind("noise_regular", 1.0f, 0.0f), 1},
            {"regular_phase", kind("noise_regular", 1.0f, 0.3f), 1},
            {"fractal4", kind("noise_fractal", 4.0f, 0.0f), 4},
            {"fractal4_phase", kind("noise_fractal", 4.0f, 0.3f), 4}};
}

void runNoiseKernel(const KernelSet& set, const NoiseKind& kind, int size, int threads)
{
    const NoiseField field{size,         size, kind.noise.size, 0, 0, kind.noise.phase,
                           kind.octaves, false};
    const NoiseShade shade{true, kind.noise.thresholdLow, kind.noise.thresholdHigh, 1, {}, {}};
    Buffers& b = buffers(size);
    forEachRowBlock(size, size, threads,
                    [&](int yBegin, int yEnd)
                    {
                        bakeNoiseRows(field, shade, set, yBegin, yEnd,
                                      static_cast<float*>(b.noise.pixeladdr(0, yBegin)));
                    });
}

void runNoise(NoiseBakeOptions noise, int size, int threads)
{
    noise.width = noise.height = size;
    noise.threads = threads;
    bakeNoise(noise);
}

void runPlainNormals(const OIIO::ImageBuf& heights, OIIO::ImageBuf& normals, int threads)
{
    const int size = heights.spec().width;
    forEachRowBlock(size, heights.spec().height, threads, [&](int yBegin, int yEnd)
                    { reference::bakeNormalRows(heights, 1.0f, 1.0f, yBegin, yEnd, normals); });
}

void runPlainNoise(const NoiseBakeOptions& noise, OIIO::ImageBuf& image, int threads)
{
    const int size = image.spec().width;
    forEachRowBlock(size, size, threads, [&](int yBegin, int yEnd)
                    { reference::bakeNoiseRows(noise, yBegin, yEnd, image); });
}

void addKernels(int size, int threads)
{
    const auto prepare = [=] { buffers(size); };
    addBenchmark("NormalKernel/memory", size, threads, false, prepare,
                 [=] { moveNormalBytes(size, threads); });
    addBenchmark("NoiseKernel/memory", size, threads, false, prepare,
                 [=] { fillNoiseBytes(size, threads); });
    for (const KernelSet& set : kernelSets())
    {
        addBenchmark(std::string("NormalKernel/") + set.name, size, threads, false, prepare,
                     [=] { runNormalKernel(set, size, threads); });
    }
    addBenchmark("NormalKernel/plain", size, threads, true, prepare,
                 [=] { runPlainNormals(buffers(size).heights, buffers(size).normals, threads); });
    for (const NoiseKind& kind : noiseKinds())
    {
        const std::string name = std::string("NoiseKernel_") + kind.name + '/';
        for (const KernelSet& set : kernelSets())
        {
            addBenchmark(name + set.name, size, threads, false, prepare,
                         [=] { runNoiseKernel(set, kind, size, threads); });
        }
        addBenchmark(name + "plain", size, threads, true, prepare,
                     [=] { runPlainNoise(kind.noise, buffers(size).noise, threads); });
    }
}

void addBakes(int size, int threads)
{
    const auto prepare = [=] { buffers(size); };
    addBenchmark("NormalBake/ours", size, threads, false, prepare,
                 [=] { bakeNormalImage(buffers(size).heights, {}, threads); });
    addBenchmark("NormalBake/plain", size, threads, true, prepare,
                 [=]
                 {
                     OIIO::ImageBuf image(OIIO::ImageSpec(size, size, 3, OIIO::TypeFloat));
                     runPlainNormals(buffers(size).heights, image, threads);
                 });
    for (const NoiseKind& kind : noiseKinds())
    {
        const std::string name = std::string("NoiseBake_") + kind.name + '/';
        addBenchmark(name + "ours", size, threads, false, prepare,
                     [=] { runNoise(kind.noise, size, threads); });
        addBenchmark(name + "plain", size, threads, true, prepare,
                     [=]
                     {
                         OIIO::ImageBuf image(OIIO::ImageSpec(size, size, 1, OIIO::TypeFloat));
                         runPlainNoise(kind.noise, image, threads);
                     });
    }
}

struct PatternCase
{
    const char* name;
    const char* property; ///< that is not as its row has it; null: none
    float value;
};

/// The names begin with that of the kind.
constexpr PatternCase patternCases[] = {
    {"checker", nullptr, 0.0f},
    {"gradient", nullptr, 0.0f},
    {"gradient_radial", "gradient_Type", 4.0f},
    {"gradient_sweep", "gradient_Type", 8.0f},
    {"gradient_distorted", "gradient_NoiseAmount", 0.2f},
    {"marble", nullptr, 0.0f},
    {"noise", "noise_Size", 6.25f},
    {"speckle", nullptr, 0.0f},
    {"tile", nullptr, 0.0f},
    {"tile_herringbone", "tile_Bond", 3.0f},
    {"wave", nullptr, 0.0f},
    {"wave_plane", "wave_Type", 1.0f},
    {"wood", nullptr, 0.0f},
    {"wood_end", "wood_Type", 1.0f},
};

Pattern patternOf(const PatternCase& wanted, int size)
{
    Pattern pattern;
    pattern.width = pattern.height = size;
    for (std::size_t kind = 0; kind < patternKindCount; ++kind)
        withPatternKind(kind,
                        [&]<class Kind>()
                        {
                            const std::string property = Kind::rows[1].name;
                            const std::string name = property.substr(0, property.find('_'));
                            if (!std::string(wanted.name).starts_with(name))
                                return;
                            pattern.kind = kind;
                            for (const PropertyRow& row : Kind::rows)
                            {
                                auto& values = pattern.values.rows.emplace_back();
                                if (std::strchr(row.name, '#') == nullptr)
                                    values.push_back(row.fallback);
                                if (wanted.property && std::strcmp(row.name, wanted.property) == 0)
                                    values[0][0] = wanted.value;
                            }
                        });
    return pattern;
}

OIIO::ImageBuf colorImage(int size)
{
    return uninitializedImage("pattern", OIIO::ImageSpec(size, size, 3, OIIO::TypeFloat));
}

/// A copy of an image of colours into a new one.
void copyColors(int size, int threads)
{
    const OIIO::ImageBuf& from = buffers(size).normals;
    OIIO::ImageBuf image = colorImage(size);
    forEachRowBlock(size, size, threads,
                    [&](int yBegin, int yEnd)
                    {
                        std::memcpy(image.pixeladdr(0, yBegin), from.pixeladdr(0, yBegin),
                                    static_cast<std::size_t>(yEnd - yBegin) *
                                        image.spec().scanline_bytes());
                    });
}

void runPlainPattern(const Pattern& pattern, int threads)
{
    OIIO::ImageBuf image = colorImage(pattern.width);
    forEachRowBlock(
        pattern.width, pattern.height, threads, [&](int yBegin, int yEnd)
        { reference::bakePatternRows(pattern, PatternPixels::Color, yBegin, yEnd, image); });
}

void addPatterns(int size, int threads)
{
    addBenchmark(
        "PatternBake/copy", size, threads, false, [=] { buffers(size); },
        [=] { copyColors(size, threads); });
    for (const PatternCase& one : patternCases)
    {
        const std::string name = std::string("PatternBake_") + one.name + '/';
        const Pattern pattern = patternOf(one, size);
        for (const KernelSet& set : kernelSets())
            addBenchmark(
                name + set.name, size, threads, false, [] {},
                [=] { bakePattern(pattern, PatternPixels::Color, {{}, threads}, set); });
        addBenchmark(
            name + "srgb", size, threads, false, [] {},
            [=] { bakePattern(pattern, PatternPixels::Srgb, {{}, threads}); });
        addBenchmark(
            name + "plain", size, threads, true, [] {}, [=] { runPlainPattern(pattern, threads); });
    }
}

std::filesystem::path folder()
{
    const char* given = std::getenv("VYR_BENCH_FOLDER");
    std::filesystem::path path = given != nullptr
                                     ? std::filesystem::path(given)
                                     : std::filesystem::temp_directory_path() / "vyr-bench-baking";
    std::filesystem::create_directories(path);
    return path;
}

/// One channel of bytes: the picture that VYR_BENCH_BUMP names, else a generated one.
OIIO::ImageBuf bumpTile()
{
    if (const char* given = std::getenv("VYR_BENCH_BUMP"))
        return readHeightImage(given, {}).heights.copy(OIIO::TypeUInt8);
    OIIO::ImageBuf tile(OIIO::ImageSpec(1024, 1024, 1, OIIO::TypeUInt8));
    unsigned grain = 1;
    for (OIIO::ImageBuf::Iterator<unsigned char> i(tile); !i.done(); ++i)
    {
        grain = grain * 1664525U + 1013904223U;
        const float x = static_cast<float>(i.x()) * 0.02f;
        const float y = static_cast<float>(i.y()) * 0.03f;
        i[0] = 0.5f + 0.2f * std::sin(x) * std::cos(y) + 0.1f * std::sin(7.0f * x + y) +
               static_cast<float>(grain >> 24) / 2550.0f;
    }
    return tile;
}

/// A JPEG of the size, tiled in mirror images so that no seam shows.
std::filesystem::path bumpFile(int size)
{
    const std::filesystem::path path = folder() / ("bump_" + std::to_string(size) + ".jpg");
    if (std::filesystem::exists(path))
        return path;
    const OIIO::ImageBuf tile = bumpTile();
    const auto mirrored = [](int at, int length)
    {
        const int within = at % (2 * length);
        return within < length ? within : 2 * length - 1 - within;
    };
    OIIO::ImageBuf image(OIIO::ImageSpec(size, size, 1, OIIO::TypeUInt8));
    for (OIIO::ImageBuf::Iterator<unsigned char> i(image); !i.done(); ++i)
        i[0] = tile.getchannel(mirrored(i.x(), tile.spec().width),
                               mirrored(i.y(), tile.spec().height), 0, 0);
    image.specmod().attribute("compression", "jpeg:92");
    image.write(path.string());
    return path;
}

void runPlainRoad(int size, int threads)
{
    OIIO::ImageBuf source(bumpFile(size).string());
    source.threads(threads);
    OIIO::ImageBuf heights(OIIO::ImageSpec(size, size, 1, OIIO::TypeFloat));
    heights.copy_pixels(source);
    OIIO::ImageBuf normals(OIIO::ImageSpec(size, size, 3, OIIO::TypeFloat));
    runPlainNormals(heights, normals, threads);
    normals.write((folder() / "plain.png").string());
}

void runRoad(int size, int threads)
{
    const std::filesystem::path destination = folder() / "ours.png";
    std::filesystem::remove(destination);
    NormalBakeOptions options;
    options.threads = threads;
    const BakeResult result =
        vyrMtlxBakeLibrary()->bakeNormalMapFile(bumpFile(size), destination, options);
    if (!result.success)
    {
        std::fprintf(stderr, "%s\n", result.message.c_str());
        std::abort();
    }
}

void addRoads(int size, int threads)
{
    const auto prepare = [=] { bumpFile(size); };
    addBenchmark("Road/ours", size, threads, false, prepare, [=] { runRoad(size, threads); });
    addBenchmark("Road/plain", size, threads, true, prepare, [=] { runPlainRoad(size, threads); });
}

/// Google Benchmark runs them in this order, so that ours and the plain version of a size meet the same machine.
const bool registered = []
{
    for (const int size : sizes)
    {
        for (const int threads : threadCounts)
        {
            addKernels(size, threads);
            addBakes(size, threads);
            addPatterns(size, threads);
            addRoads(size, threads);
        }
    }
    return true;
}();

} // namespace

} // namespace vyr::MaterialTranslation::baking
