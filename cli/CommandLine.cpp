#include "CommandLine.h"

#include <cstdio>
#include <iostream>
#include <limits>
#include <memory>

#include <MaterialTranslation/Diagnostics.h>

#include "Arguments.h"
#include "Console.h"

namespace vyr::cli
{
namespace
{

/// Larger images than this are a slip of the pen: one would fill more memory than machines have.
constexpr std::uint64_t largestImage = 16384;
constexpr unsigned mostJobs = 1024;

constexpr const char* footer = "Exit status: 0 all done, 1 some materials or images failed, 2 "
                               "wrong usage or unreadable input\n"
                               "(nothing was written), 130 interrupted.";

void addFiles(CLI::App& app, std::vector<std::string>& files)
{
    app.add_option("FILE", files, "asset library files (JSON)")->required()->type_name("");
}

void addOutputFolder(CLI::App& app, std::string& output)
{
    addPath(app, "--output,-o", output, "folder for the documents; made when missing")
        ->required()
        ->type_name("DIR");
}

void defineConversionOptions(CLI::App& app, MaterialTranslation::ConverterOptions& options)
{
    app.add_flag("--look", options.addLook, "add the look \"default\" for all geometry");
    app.add_flag("--copy-textures", options.copyTextures,
                 "gather image files in DIR/<material name>");
    app.add_flag("--id-names", options.useAssetIdInName, "put the identifier into material names");
    addNumber(app, "--color-mode", options.colorMode,
              "what plain colours are taken for: 1 power 2.2, 2 Rec.709 display (default), "
              "3 and 4 the same left to the reader, other: linear");
    addNumber(app, "--roughness-mode", options.roughnessMode,
              "2 roughness is 1 - glossiness (default), other: by the perceived highlight");
    addNumber(app, "--image-size", options.imageSize,
              "width and height in pixels of baked images (default 1024)", {1, largestImage});
    app.add_flag_callback(
        "--legacy", [&options] { options.translationPath = 1; },
        "use the translator of the legacy schemas");
    app.add_flag("--verbose", options.verbose,
                 "print every property read to standard output; implies --jobs 1");
}

void defineConvert(CLI::App& root, ConvertCommand& command)
{
    CLI::App& app = *root.add_subcommand("convert", "convert materials to MaterialX documents");
    addFiles(app, command.files);
    addOutputFolder(app, command.output);
    addRepeatable(app, "--asset", command.assets, "convert only the material of this identifier")
        ->type_name("ID");
    addRepeatable(app, "--texture-path", command.texturePaths,
                  "a further folder to look image references up in")
        ->check(pathText())
        ->type_name("DIR");
    defineConversionOptions(app, command.options);
    app.add_flag("--absolute-paths", command.absolutePaths,
                 "keep absolute image paths in the documents");
    addNumber(app, "--jobs,-j", command.jobs,
              "materials translated side by side (default: the number of cores)", {1, mostJobs});
    addPath(app, "--report", command.report, "write a JSON report")->type_name("FILE");
    app.add_flag("--strict", command.strict, "a material with a warning counts as failed");
    app.add_flag("--quiet,-q", command.quiet, "no progress, no summary");
}

void defineOverlay(CLI::App& root, OverlayCommand& command)
{
    CLI::App& app = *root.add_subcommand("overlay", "convert decals and threads");
    addFiles(app, command.files);
    addOutputFolder(app, command.output);
}

void defineList(CLI::App& root, ListCommand& command)
{
    CLI::App& app = *root.add_subcommand("list", "print what the files hold");
    addFiles(app, command.files);
    app.add_flag("--json", command.json, "print JSON");
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
    defineConvert(app, convert);
    defineOverlay(app, overlay);
    defineList(app, list);
    try
    {
        app.parse(count, arguments);
    }
    catch (const CLI::ParseError& outcome)
    {
        return answer(app, outcome);
    }
    if (app.got_subcommand("convert"))
        return convert;
    if (app.got_subcommand("overlay"))
        return overlay;
    return list;
}

} // namespace vyr::cli
