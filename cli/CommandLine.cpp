#include "CommandLine.h"

#include <cstdint>
#include <deque>
#include <map>
#include <sstream>
#include <string_view>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/Schemas.h>

#include "Console.h"
#include "Options.h"
#include "Report.h"

namespace vyr::cli
{
namespace
{

constexpr unsigned mostJobs = 1024;

constexpr const char* footer =
    "Exit status: 0 all done, 1 some materials, documents or images failed, 2 "
    "wrong usage or unreadable input\n"
    "(nothing was written), 130 interrupted.";

void addFiles(CLI::App& app, std::vector<std::string>& files)
{
    app.add_option("FILE", files, "asset library files (JSON); - is standard input")
        ->required()
        ->type_name("");
}

void defineConversionOptions(CLI::App& app, MaterialTranslation::ConverterOptions& options)
{
    app.add_flag("--id-names", options.useAssetIdInName, "put the identifier into material names");
    addNumber(app, "--color-mode", options.colorMode,
              "what plain colours are taken for: 1 power 2.2, 2 Rec.709 display (default), "
              "3 and 4 the same left to the reader, other: linear");
    addNumber(app, "--roughness-mode", options.roughnessMode,
              "2 roughness is 1 - glossiness (default), other: by the perceived highlight");
    addNumber(app, "--image-size", options.imageSize,
              "width and height in pixels of baked images (default 1024)",
              {1, static_cast<std::uint64_t>(largestImage)});
    app.add_flag_callback(
        "--legacy", [&options] { options.translationPath = 1; },
        "use the translator of the legacy schemas");
    app.add_flag("--verbose", options.verbose,
                 "print every property read to standard output; implies --jobs 1");
}

/// @param output what the folder is for.
void defineInputs(CLI::App& app, DocumentsCommand& command, const std::string& output)
{
    addFiles(app, command.files);
    addPath(app, "--output,-o", command.output, output + "; made when missing")
        ->required()
        ->type_name("DIR");
    addRepeatable(app, "--texture-path", command.texturePaths,
                  "a further folder to look image references up in; repeatable")
        ->check(pathProblem)
        ->type_name("DIR");
}

/// @param thing that the command makes documents of, such as "material".
void defineJobs(CLI::App& app, DocumentsCommand& command, const std::string& thing)
{
    addNumber(app, "--jobs,-j", command.jobs,
              thing + "s converted side by side (default: the number of cores)", {1, mostJobs});
}

/// @param thing that the command makes documents of, such as "material".
void defineDocumentOptions(CLI::App& app, DocumentsCommand& command, const std::string& thing)
{
    using MaterialTranslation::NodeForm;
    defineInputs(app, command, "folder for the documents");
    app.add_flag("--look", command.options.addLook, "add the look \"default\" for all geometry");
    app.add_flag("--copy-textures", command.options.copyTextures,
                 "gather image files in DIR/<" + thing + " name>");
    static const std::map<std::string, NodeForm> forms = {{"reference", NodeForm::Reference},
                                                          {"embed", NodeForm::Embed},
                                                          {"standard", NodeForm::Standard}};
    const auto choose = [&command](const std::string& name) { command.nodes = forms.at(name); };
    app.add_option_function<std::string>("--nodes", choose,
                                         "how documents use the kvor nodes: by reference "
                                         "(default), with their definitions embedded, "
                                         "or replaced by standard nodes")
        ->check(CLI::IsMember({"reference", "embed", "standard"}))
        ->type_name("FORM");
    app.add_flag("--validate", command.validate,
                 "check every document before it is written; an invalid one counts as failed");
    app.add_flag("--absolute-paths", command.absolutePaths,
                 "keep absolute image paths in the documents");
    defineJobs(app, command, thing);
    addPath(app, "--report", command.report, "write a JSON report; - is standard output")
        ->type_name("FILE");
    app.add_flag("--strict", command.strict, thing + "s with a warning count as failed");
    app.add_flag("--quiet,-q", command.quiet, "no progress bar, no summary");
    static const std::map<std::string, ProgressForm> progress = {
        {"bar", ProgressForm::Bar}, {"json", ProgressForm::Json}, {"none", ProgressForm::None}};
    app.add_option_function<std::string>(
           "--progress",
           [&command](const std::string& name) { command.progress = progress.at(name); },
           "a bar on a terminal (default), or all of standard error as lines of JSON")
        ->check(CLI::IsMember({"bar", "json", "none"}))
        ->type_name("FORM");
    app.add_flag("--force", command.anew, "make everything anew, also what would be the same");
    app.add_flag("--replace", command.replace, "replace documents of other assets too");
    app.add_flag("--prune", command.prune,
                 "remove what earlier runs of the same files wrote for " + thing +
                     "s that are gone");
    app.add_flag("!--no-sync", command.sync, "do not wait until everything is on the disk");
}

void addImageLimit(CLI::App& app, MaterialTranslation::ImageLimits& limits)
{
    constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;
    const auto set = [&limits](const std::uint64_t& size)
    { limits.decodedBytes = size * mebibyte; };
    app.add_option_function<std::uint64_t>(
           "--image-limit", set,
           "largest height image that is decoded, unpacked, in MiB (default 4096)")
        ->check(CLI::Range(std::uint64_t{1}, std::uint64_t{1} << 30))
        ->type_name("MIB");
}

CLI::App& defineConvert(CLI::App& root, ConvertCommand& command)
{
    CLI::App& app = *root.add_subcommand("convert", "convert materials to MaterialX documents");
    defineDocumentOptions(app, command, "material");
    addRepeatable(app, "--asset", command.assets,
                  "convert only the material of this identifier; repeatable")
        ->excludes("--prune")
        ->type_name("ID");
    defineConversionOptions(app, command.options);
    addImageLimit(app, command.limits);
    return app;
}

CLI::App& defineOverlay(CLI::App& root, OverlayCommand& command)
{
    CLI::App& app = *root.add_subcommand("overlay", "convert decals and threads");
    defineDocumentOptions(app, command, "overlay");
    return app;
}

CLI::App& defineList(CLI::App& root, ListCommand& command)
{
    CLI::App& app = *root.add_subcommand("list", "print what the files hold");
    addFiles(app, command.files);
    app.add_flag("--json", command.json, "print JSON");
    return app;
}

CLI::App& defineSchema(CLI::App& root, SchemaCommand& command)
{
    CLI::App& app = *root.add_subcommand("schema", "print the properties that schemas have");
    app.add_option("NAME", command.name, "only this schema")->type_name("");
    app.add_flag("--json", command.json, "print JSON");
    return app;
}

CLI::App& defineInit(CLI::App& root, InitCommand& command)
{
    CLI::App& app =
        *root.add_subcommand("init", "make a first asset library from a folder of textures");
    app.add_option("DIR", command.folder, "folder with textures; folders in it are searched too")
        ->required()
        ->type_name("");
    addPath(app, "--output,-o", command.output, "library file (default DIR/materials.json)")
        ->type_name("FILE");
    return app;
}

CLI::App& definePreview(CLI::App& root, PreviewCommand& command)
{
    CLI::App& app = *root.add_subcommand("preview", "make a page that shows materials");
    defineInputs(app, command.convert, "folder for the page");
    app.add_flag("--watch", command.watch,
                 "go on: when a file or image changes, convert and show anew");
    app.add_flag("--pictures", command.pictures,
                 "write a picture of each material too, drawn by a browser without a window");
    addPath(app, "--browser", command.browser,
            "the browser for --pictures: Chromium or one that is made of it (default: looked for)")
        ->type_name("PROGRAM");
    defineConversionOptions(app, command.convert.options);
    addImageLimit(app, command.convert.limits);
    defineJobs(app, command.convert, "material");
    app.add_flag("--quiet,-q", command.convert.quiet, "no progress, no summary");
    return app;
}

CLI::App& defineValidate(CLI::App& root, ValidateCommand& command)
{
    CLI::App& app = *root.add_subcommand(
        "validate", "check documents against the standard and the kvor definitions");
    app.add_option("FILE", command.files, "MaterialX documents")->required()->type_name("");
    app.add_flag("--json", command.json, "print JSON");
    return app;
}

CLI::App& defineBakeNormal(CLI::App& bake, BakeNormalCommand& command)
{
    CLI::App& app = *bake.add_subcommand("normal", "bake a height image into a normal map");
    app.add_option("IMAGE", command.image, "height image")->required()->type_name("");
    addImageFile(app, command.output);
    addNumber(app, "--bump-amount", command.options.bumpAmount,
              "strength of the relief; 0 (default) leaves the slopes as they are");
    addNumbers(app, "--real-world-scale", command.options.realWorldScale.data(), 2,
               "size of the image in the world (default 1 1)");
    addNumbers(app, "--bump-scale", command.options.bumpScale.data(), 2,
               "further factors along x and y (default 1 1)");
    addImageLimit(app, command.options.limits);
    return app;
}

CLI::App& defineBakeNoise(CLI::App& bake, BakeNoiseCommand& command)
{
    MaterialTranslation::NoiseBakeOptions& options = command.options;
    options.size = 1.0f;
    options.thresholdHigh = 1.0f;
    options.levels = 1.0f;
    const auto useColors = [&command](const std::string&) { command.inColor = true; };
    const Range<int> pixels{1, largestImage};

    CLI::App& app = *bake.add_subcommand("noise", "bake gradient noise into an image");
    addImageFile(app, command.output);
    addNumber(app, "--resolution", command.resolution, "width and height in pixels", pixels);
    addNumber(app, "--width", options.width, "width, when it is not the resolution", pixels);
    addNumber(app, "--height", options.height, "height, when it is not the resolution", pixels);
    app.add_option("--type", options.type,
                   "noise_regular (default), noise_fractal or noise_turbulence")
        ->check(CLI::IsMember({"noise_regular", "noise_fractal", "noise_turbulence"}))
        ->type_name("TYPE");
    addNumbers(app, "--color1", command.color1.data(), 3, "colour where the noise is 0 (black)")
        ->each(useColors);
    addNumbers(app, "--color2", command.color2.data(), 3, "colour where the noise is 1 (white)")
        ->each(useColors);
    addNumber(app, "--size", options.size, "the image is 100 / size cells wide (default 1)");
    addNumber(app, "--threshold-low", options.thresholdLow, "noise below is 0 (default 0)");
    addNumber(app, "--threshold-high", options.thresholdHigh, "noise above is 1 (default 1)");
    addNumber(app, "--levels", options.levels, "octaves of fractal and turbulence (default 1)");
    addNumber(app, "--phase", options.phase, "place on the noise's fourth axis (default 0)");
    return app;
}

/// What CLI11 does not check.
void checkSize(const BakeNoiseCommand& command)
{
    if (command.resolution == 0 && (command.options.width == 0 || command.options.height == 0))
        throw CLI::RequiredError("--resolution, or --width and --height");
}

/// A command that does not exist is told by its name, not as one that is missing.
void checkCommandName(const CLI::App& app, int count, const char* const* arguments)
{
    const std::string name = count > 1 ? arguments[1] : "-";
    if (name.front() != '-' &&
        app.get_subcommands([&name](const CLI::App* c) { return c->check_name(name); }).empty())
        throw CLI::ExtrasError("vyr-mtlx", {name});
}

/// CLI11 tells help, version and mistakes apart by exceptions.
ExitStatus answer(const CLI::App& app, const CLI::ParseError& outcome)
{
    if (outcome.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
    {
        std::ostringstream text;
        app.exit(outcome, text, text);
        Results results;
        results.write(text.str());
        return results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
    }
    complain(std::string("vyr-mtlx: ") + outcome.what());
    complain("vyr-mtlx: \"vyr-mtlx --help\" and \"vyr-mtlx COMMAND --help\" tell the usage");
    return ExitStatus::WrongUse;
}

/// The report that the arguments name, as far as can be told when they are wrong.
std::string reportOf(int count, const char* const* arguments)
{
    constexpr std::string_view option = "--report";
    std::string report;
    for (int i = 2; i < count && std::string_view(arguments[i]) != "--"; ++i)
    {
        const std::string_view argument = arguments[i];
        if (argument == option && i + 1 < count)
            report = arguments[i + 1];
        else if (argument.starts_with(std::string(option) + "="))
            report = argument.substr(option.size() + 1);
    }
    return report;
}

} // namespace

Request parseCommandLine(int count, const char* const* arguments)
{
    CLI::App app("Turns material libraries into MaterialX 1.39 documents.", "vyr-mtlx");
    app.require_subcommand(1);
    app.allow_windows_style_options(false);
    app.set_version_flag("--version",
                         std::string("vyr-mtlx ") + MaterialTranslation::libraryVersion());
    app.footer(footer);

    ConvertCommand convert;
    OverlayCommand overlay;
    ListCommand list;
    SchemaCommand schemas;
    InitCommand init;
    PreviewCommand preview;
    ValidateCommand validate;
    BakeNormalCommand normal;
    BakeNoiseCommand noise;
    Request request;
    const auto choose = [&request](CLI::App& command, const auto& options)
    { command.callback([&request, &options] { request = options; }); };
    choose(defineConvert(app, convert), convert);
    choose(defineOverlay(app, overlay), overlay);
    choose(defineList(app, list), list);
    choose(defineSchema(app, schemas), schemas);
    choose(defineInit(app, init), init);
    choose(definePreview(app, preview), preview);
    choose(defineValidate(app, validate), validate);
    CLI::App& bake = *app.add_subcommand("bake", "bake images")->require_subcommand(1);
    choose(defineBakeNormal(bake, normal), normal);
    choose(defineBakeNoise(bake, noise), noise);
    std::deque<BakeTextureCommand> textures;
    for (const MaterialTranslation::SchemaRow& schema : MaterialTranslation::proceduralTextures())
        if (CLI::App* const command = defineBakeTexture(bake, schema, textures.emplace_back()))
            choose(*command, textures.back());
    try
    {
        checkCommandName(app, count, arguments);
        app.parse(count, arguments);
        if (bake.got_subcommand("noise"))
            checkSize(noise);
        return request;
    }
    catch (const CLI::ParseError& outcome)
    {
        const ExitStatus status = answer(app, outcome);
        if (status == ExitStatus::WrongUse)
            retireReport(reportOf(count, arguments));
        return status;
    }
}

} // namespace vyr::cli
