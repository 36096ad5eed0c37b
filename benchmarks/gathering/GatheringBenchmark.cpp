// What gathering images costs beside the system's own "cp" making the same copies in the same folders, all in one
// process: at most 1.3.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/MaterialXConverter.h>
#include <vyr/assetlib/Library.h>

#include "PairedTiming.h"

namespace vyr::benchmarks
{

namespace
{

namespace fs = std::filesystem;
namespace mt = MaterialTranslation;
namespace mx = MaterialX;

using kelvor::platform::core::string::UTF8String;

constexpr std::size_t imageCount = 200;
constexpr std::size_t imageSize = 1'000'000;

/// Images and a library of as many materials, each with one of them.
class Images
{
  public:
    Images() : _folder(fs::temp_directory_path() / "vyr-bench-gathering"), _library(make(_folder))
    {
    }
    Images(const Images&) = delete;
    Images& operator=(const Images&) = delete;
    ~Images() { fs::remove_all(_folder); }

    const fs::path& folder() const { return _folder; }
    const std::vector<assetlib::Material>& materials() const { return _library.materials(); }

  private:
    static assetlib::Library make(const fs::path& folder)
    {
        fs::remove_all(folder);
        fs::create_directories(folder / "images");
        std::mt19937 random(1);
        std::string bytes(imageSize, '\0');
        std::ofstream library(folder / "library.json");
        library << R"({"assetLibrary": 1, "texturePaths": ["images"], "materials": [)";
        for (std::size_t i = 0; i < imageCount; ++i)
        {
            for (char& byte : bytes)
                byte = static_cast<char>(random());
            const std::string name = "image" + std::to_string(i) + ".png";
            std::ofstream(folder / "images" / name, std::ios::binary) << bytes;
            const std::string number = std::to_string(i);
            library
                << (i == 0 ? "" : ",") << R"({"id": "m)" << number
                << R"(", "schema": "GenericSchema", "name": "Wall )" << number
                << R"(", "properties": {"generic_diffuse": {"type": "reference", "connected": {)"
                << R"("schema": "UnifiedBitmapSchema", "properties": {"unifiedbitmap_Bitmap": )"
                << R"({"type": "uri", "value": ")" << name << R"("}}}}}})";
        }
        library << "]}";
        library.close();
        auto result = assetlib::load({(folder / "library.json").string()});
        if (!result.library)
            throw std::runtime_error(result.errors.front().format());
        return std::move(*result.library);
    }

    fs::path _folder;
    assetlib::Library _library;
};

void copyByCp(const fs::path& from, const fs::path& to)
{
    const std::string command = "cp -r \"" + from.string() + "\" \"" + to.string() + "\"";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("failed: " + command);
}

void translateAll(const Images& images, const fs::path& to)
{
    mt::ConverterOptions options;
    options.outputDirectory = UTF8String(to.string());
    options.copyTextures = true;
    mt::MaterialXConverter converter(options);
    for (const assetlib::Material& material : images.materials())
        converter.TranslateToMaterialX(*material.asset, converter.getMaterialName(*material.asset),
                                       mx::createDocument());
}

std::uintmax_t copiedBytes(const fs::path& folder)
{
    std::uintmax_t bytes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
    return bytes;
}

/// Translation and gathering of so many times 200 materials, which share 200 images of 1 MB; one thread. Each
/// portion is removed before the next, so that neither side waits for the disk.
void gather(benchmark::State& state)
{
    const auto portions = static_cast<std::size_t>(state.range(0));
    const Images images;
    const fs::path tree = images.folder() / "tree";
    fs::create_directory(tree);
    translateAll(images, tree);
    PairedTiming timing(portions);
    for (auto step : state)
    {
        double seconds = 0;
        for (std::size_t portion = 0; portion < portions; ++portion)
        {
            const fs::path ours = images.folder() / "ours";
            const fs::path theirs = images.folder() / "cp";
            fs::create_directory(ours);
            seconds += timing.measure(
                portion, [&] { translateAll(images, ours); }, [&] { copyByCp(tree, theirs); });
            if (copiedBytes(ours) != imageCount * imageSize ||
                copiedBytes(theirs) != copiedBytes(ours))
                throw std::runtime_error("not everything was copied");
            fs::remove_all(ours);
            fs::remove_all(theirs);
        }
        state.SetIterationTime(seconds);
    }
    const auto total = static_cast<double>(portions * imageCount);
    state.counters["ratio"] = timing.ratio();
    state.counters["materials/s"] = total / timing.ours();
    state.counters["cp/s"] = total / timing.floor();
}
BENCHMARK(gather)->Arg(1)->Arg(5)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

} // namespace vyr::benchmarks
