// What converting costs beside writing the same documents by hand: the ratio is the figure, at most 1.25.
// And whether a material costs the same among many as among few: the growth, at most 1.1.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include <MaterialXCore/Document.h>
#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/DocumentIO.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <vyr/assetlib/Library.h>

#include "ByHand.h"
#include "PairedTiming.h"

namespace vyr::benchmarks
{

namespace
{

namespace fs = std::filesystem;
namespace mt = MaterialTranslation;
namespace mx = MaterialX;

using kelvor::platform::core::string::IString;
using kelvor::platform::core::string::UTF8String;

constexpr std::size_t few = 100;
constexpr std::size_t many = 10000;

/// A folder of the process's own, removed at its end.
class Scratch
{
  public:
    Scratch() : _path(fs::temp_directory_path() / ("vyr-bench-" + std::to_string(std::rand())))
    {
        fs::create_directories(_path);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    ~Scratch() { fs::remove_all(_path); }

    const fs::path& path() const { return _path; }

  private:
    fs::path _path;
};

const fs::path& scratch()
{
    std::srand(static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count()));
    static const Scratch folder;
    return folder.path();
}

/// A material with most of the properties that the Generic rules read, every one of other values.
std::string materialJson(std::size_t i)
{
    const auto part = [i](std::size_t modulus)
    { return std::to_string(static_cast<double>(i % modulus) / static_cast<double>(modulus)); };
    return R"({"id": "m)" + std::to_string(i) + R"(", "schema": "GenericSchema", "name": "Wall )" +
           std::to_string(i) + R"(", "description": "A wall", "properties": {
        "generic_diffuse": [)" +
           part(97) + ", " + part(89) + ", " + part(83) + R"(],
        "generic_reflectivity_at_0deg": )" +
           part(79) + R"(, "generic_is_metal": )" + (i % 3 == 0 ? "true" : "false") +
           R"(, "generic_glossiness": )" + part(73) + R"(, "generic_transparency": )" + part(71) +
           R"(, "generic_refraction_index": 1.4)" + R"(, "generic_self_illum_luminance": )" +
           part(67) + R"(, "generic_self_illum_filter_map": [1.0, 0.5, )" + part(61) + "]}}";
}

/// Materials of all schemas of the legacy family by turns, without what has to be baked and with the same inputs.
std::string legacyJson(std::size_t i)
{
    const std::string number = std::to_string(i);
    const std::string share = std::to_string(static_cast<double>(i % 89) / 97.0);
    const auto choice = [](const char* name, const char* value)
    { return std::string("\"") + name + R"(": {"type": "choice", "value": ")" + value + "\"}, "; };
    const auto color = [&](const char* name)
    { return std::string("\"") + name + "\": [0.5, 0.2, " + share + "]"; };
    const std::pair<const char*, std::string> materials[] = {
        {"CeramicSchema", choice("ceramic_type", "ceramic_porcelain") +
                              choice("ceramic_finish", "ceramic_satin") + color("ceramic_color")},
        {"ConcreteSchema", choice("concrete_finish", "concrete_smooth") +
                               choice("concrete_sealant", "concrete_matte") +
                               color("concrete_color")},
        {"GlazingSchema",
         choice("glazing_tint", "glazing_bronze") +
             R"("glazing_sheets": {"type": "integer", "value": 2}, "glazing_reflectance": )" +
             share},
        {"HardwoodSchema", choice("hardwood_finish", "hardwood_gloss") + color("hardwood_color")},
        {"MasonryCMUSchema", choice("masonrycmu_type", "masonrycmu_glazed") +
                                 choice("masonrycmu_sealant", "masonrycmu_glossy") +
                                 color("masonrycmu_color")},
        {"MetalSchema", choice("metal_type", "metal_copper") +
                            choice("metal_finish", "metal_satin") +
                            choice("metal_coat", "metal_matte") + "\"metal_patina\": 1.0"},
        {"MetallicPaintSchema", choice("metal_type", "metal_aluminum") +
                                    choice("metallicpaint_finish", "metallicpaint_satin") +
                                    "\"metallicpaint_flakes\": " + share},
        {"MirrorSchema", choice("mirror_type", "mirror_silver") + "\"mirror_roughness\": " + share},
        {"PlasticVinylSchema", choice("plasticvinyl_type", "plasticvinyl_transparent") +
                                   choice("plasticvinyl_finish", "plasticvinyl_matte") +
                                   color("plasticvinyl_color")},
        {"SolidGlassSchema", choice("solidglass_tint", "solidglass_green") +
                                 "\"solidglass_depth\": 0.02, \"glazing_reflectance\": " + share},
        {"StoneSchema", choice("stone_finish", "stone_polished") +
                            choice("stone_sealant", "stone_glossy") + color("stone_color")},
        {"WallPaintSchema", choice("wallpaint_finish", "wallpaint_eggshell") +
                                choice("wallpaint_application", "wallpaint_spray") +
                                color("wallpaint_color")},
        {"WaterSchema",
         choice("water_type", "water_custom") + "\"water_depth\": 2.0, " + color("water_color")},
    };
    const auto& [schema, properties] = materials[i % std::size(materials)];
    return R"({"id": "m)" + number + R"(", "schema": ")" + schema + R"(", "name": "Wall )" +
           number + R"(", "description": "A wall", "properties": {)" + properties + "}}";
}

struct Materials
{
    Materials(std::size_t count, bool legacy)
        : file(scratch() / (std::to_string(count) + (legacy ? "l.json" : ".json"))),
          library(load(file, count, legacy ? legacyJson : materialJson))
    {
    }

    static assetlib::Library load(const fs::path& file, std::size_t count,
                                  std::string (*json)(std::size_t))
    {
        std::ofstream stream(file);
        stream << R"({"assetLibrary": 1, "materials": [)";
        for (std::size_t i = 0; i < count; ++i)
            stream << (i == 0 ? "" : ",\n") << json(i);
        stream << "]}";
        stream.close();
        auto result = assetlib::load({file.string()});
        if (!result.library)
            throw std::runtime_error(result.errors.front().format());
        return std::move(*result.library);
    }

    fs::path file;
    assetlib::Library library;
    std::vector<HandMaterial> byHand;
};

mt::ConverterOptions options(bool legacy = false)
{
    mt::ConverterOptions result;
    result.translationPath = legacy ? 1 : 0;
    result.outputDirectory = UTF8String(scratch().string());
    return result;
}

std::string convert(mt::MaterialXConverter& converter, const assetlib::Material& material)
{
    const mx::DocumentPtr document = mx::createDocument();
    converter.TranslateToMaterialX(*material.asset, converter.getMaterialName(*material.asset),
                                   document);
    return mt::documentToXml(document);
}

/// The materials of that number and what somebody who writes their documents by hand knows of them, checked to
/// give the same bytes.
const Materials& materials(std::size_t count, bool legacy = false)
{
    static std::map<std::pair<std::size_t, bool>, Materials> known;
    const auto found = known.find({count, legacy});
    if (found != known.end())
        return found->second;
    Materials& made = known.try_emplace(std::pair(count, legacy), count, legacy).first->second;
    mt::ConverterOptions setting = options(legacy);
    mt::MaterialXConverter converter(setting);
    for (const assetlib::Material& material : made.library.materials())
    {
        const std::string xml = convert(converter, material);
        const mx::DocumentPtr document = mx::createDocument();
        mx::readFromXmlString(document, xml);
        made.byHand.push_back(valuesOf(document));
        if (mx::writeToXmlString(buildByHand(made.byHand.back())) != xml)
            throw std::runtime_error("the document by hand is not that of the converter:\n" + xml);
    }
    return made;
}

void report(benchmark::State& state, const PairedTiming& timing, std::size_t count)
{
    const auto total = static_cast<double>(count);
    state.counters["ratio"] = timing.ratio();
    state.counters["materials/s"] = total / timing.ours();
    state.counters["by hand/s"] = total / timing.floor();
}

/// TranslateToMaterialX and documentToXml, beside building and writing by hand; one thread.
void documents(benchmark::State& state, bool legacy)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const Materials& input = materials(count, legacy);
    const std::size_t pieces = (count + few - 1) / few;
    const std::size_t repeats = count < few ? few / count : 1;
    PairedTiming timing(pieces);
    mt::ConverterOptions setting = options(legacy);
    for (auto step : state)
    {
        mt::MaterialXConverter converter(setting);
        double seconds = 0;
        for (std::size_t piece = 0; piece < pieces; ++piece)
        {
            const std::size_t first = piece * few;
            const std::size_t last = std::min(first + few, count);
            const auto ours = [&]
            {
                for (std::size_t repeat = 0; repeat < repeats; ++repeat)
                    for (std::size_t i = first; i < last; ++i)
                        benchmark::DoNotOptimize(convert(converter, input.library.materials()[i]));
            };
            const auto floor = [&]
            {
                for (std::size_t repeat = 0; repeat < repeats; ++repeat)
                    for (std::size_t i = first; i < last; ++i)
                        benchmark::DoNotOptimize(
                            mx::writeToXmlString(buildByHand(input.byHand[i])));
            };
            seconds += timing.measure(piece, ours, floor);
        }
        state.SetIterationTime(seconds);
    }
    report(state, timing, count * repeats);
}
BENCHMARK_CAPTURE(documents, generic, false)
    ->Arg(1)
    ->Arg(few)
    ->Iterations(200)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(documents, generic, false)
    ->Arg(many)
    ->Iterations(8)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(documents, legacy, true)
    ->Arg(1)
    ->Arg(many)
    ->Iterations(8)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

class Text final : public IString
{
  public:
    void Assign(const UTF8String& assigned) override { text = assigned.str(); }
    std::string text;
};

using List = std::vector<assetlib::Material>;

/// The cost of a material among many over its cost among few: all at once, and the same ones in portions.
template <class Work> void growth(benchmark::State& state, const Work& work)
{
    const auto count = static_cast<std::size_t>(state.range(0)) * few;
    const List& list = materials(count).library.materials();
    const auto inPortions = [&]
    {
        for (std::size_t first = 0; first < count; first += few)
            work(list, first, first + few);
    };
    PairedTiming timing(1);
    for (auto step : state)
        state.SetIterationTime(timing.measure(0, [&] { work(list, 0, count); }, inPortions));
    state.counters["growth"] = timing.ratio();
    state.counters["materials/s"] = static_cast<double>(count) / timing.ours();
}

void convertAll(const List& list, std::size_t first, std::size_t last)
{
    mt::ConverterOptions setting = options();
    mt::MaterialXConverter converter(setting);
    for (std::size_t i = first; i < last; ++i)
        benchmark::DoNotOptimize(convert(converter, list[i]));
}

void registerAll(const List& list, std::size_t first, std::size_t last)
{
    mt::ConverterOptions setting = options();
    mt::MaterialXConverter converter(setting);
    Text text;
    for (std::size_t i = first; i < last; ++i)
        if (!converter.RegisterAssetForConversion(*list[i].asset, text))
            throw std::runtime_error("a material is not registered");
}

void registerAndDrain(const List& list, std::size_t first, std::size_t last)
{
    mt::ConverterOptions setting = options();
    mt::MaterialXConverter converter(setting);
    Text text;
    for (std::size_t i = first; i < last; ++i)
        converter.RegisterAssetForConversion(*list[i].asset, text);
    for (std::size_t i = first; i < last; ++i)
        if (!converter.SerializeRegisteredAssetsForConversion(text, nullptr))
            throw std::runtime_error("a material is not delivered");
}

BENCHMARK_CAPTURE(growth, converting, convertAll)
    ->Arg(1)
    ->Arg(many / few)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(growth, registering, registerAll)
    ->Arg(1)
    ->Arg(many / few)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(growth, draining, registerAndDrain)
    ->Arg(1)
    ->Arg(many / few)
    ->Iterations(5)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void run(const std::string& arguments)
{
    const std::string command = std::string("\"") + VYR_MTLX + "\" " + arguments + " > \"" +
                                (scratch() / "list").string() + "\"";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("failed: " + command);
}

/// `vyr-mtlx convert` as a process of its own, from JSON to files, beside writing the same files by hand from
/// values at hand. The tool's start, the reading of the library and the care for whole files have no counterpart
/// there; further ratios count the reading, and the start too, on both sides. The disk is most of both: where many files
/// were deleted lately it is slow by turns, and TMPDIR should lead to a new file system.
void tool(benchmark::State& state)
{
    const auto count = static_cast<std::size_t>(state.range(0));
    const Materials& input = materials(count);
    PairedTiming timing(1);
    PairedTiming reading(1);
    PairedTiming start(1);
    for (auto step : state)
    {
        // New folders each time: file systems are slow to give out again what was just removed.
        static int number = 0;
        const fs::path ours = scratch() / ("tool" + std::to_string(++number));
        const fs::path byHand = scratch() / ("hand" + std::to_string(number));
        fs::create_directory(ours);
        fs::create_directory(byHand);
        const auto runTool = [&]
        {
            run("convert \"" + input.file.string() + "\" --quiet --no-sync --jobs " +
                std::to_string(state.range(1)) + " --output \"" + ours.string() + "\"");
        };
        const auto write = [&]
        {
            for (const HandMaterial& material : input.byHand)
                mx::writeToXmlFile(buildByHand(material),
                                   (byHand / (material.name + ".mtlx")).string());
        };
        state.SetIterationTime(timing.measure(0, runTool, write));
        reading.measure(
            0, [&] { benchmark::DoNotOptimize(assetlib::load({input.file.string()})); }, [] {});
        start.measure(0, [] { run("--version"); }, [] {});
    }
    report(state, timing, count);
    const double withReading = timing.floor() + reading.ours();
    state.counters["ratio with reading"] = timing.ours() / withReading;
    state.counters["and start"] = timing.ours() / (withReading + start.ours());
}
BENCHMARK(tool)
    ->ArgNames({"", "jobs"})
    ->ArgsProduct({{1, few, many}, {1, 2}})
    ->Iterations(8)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace

} // namespace vyr::benchmarks
