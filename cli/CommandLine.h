#pragma once

#include <array>
#include <string>
#include <variant>
#include <vector>

#include <MaterialTranslation/Bakes.h>

#include "batch/Settings.h"

/// @file
/// What the program can be asked for, and how it ends. Texts are UTF-8; paths are as the user wrote them.
namespace vyr::cli
{

/// How the program ends; part of its interface, since scripts act on it.
enum class ExitStatus : int
{
    /// Everything that was asked for is done.
    Done = 0,
    /// Some materials, overlays or images failed, or a result could not be delivered; the others
    /// were written.
    SomeFailed = 1,
    /// Wrong usage, an unknown material or unreadable input: nothing was written.
    WrongUse = 2,
    /// Interrupted by the user or the system; what was written until then is whole.
    Interrupted = 130,
};

/// In place of the name of a file: standard input, or standard output.
inline constexpr const char* standardStream = "-";

/// How a run tells how far it is.
enum class ProgressForm
{
    Bar,
    Json,
    None,
};

/// What commands have in common that make documents of asset files.
struct DocumentsCommand : batch::Settings
{
    std::vector<std::string> files;
    /// Further folders to look image references up in.
    std::vector<std::string> texturePaths;
    bool strict = false;
    bool quiet = false;
    ProgressForm progress = ProgressForm::Bar;
    /// Whether what earlier runs wrote for materials that are gone is removed.
    bool prune = false;
    /// Whether the documents' paths are printed to standard output.
    bool printDocuments = true;
    /// Whether a run that is done has waited for the disk.
    bool sync = true;
};

/// `vyr-mtlx convert`.
struct ConvertCommand : DocumentsCommand
{
    /// Identifiers of the only materials to convert; empty: all.
    std::vector<std::string> assets;
};

/// `vyr-mtlx overlay`.
struct OverlayCommand : DocumentsCommand
{
};

/// `vyr-mtlx list`.
struct ListCommand
{
    std::vector<std::string> files;
    bool json = false;
};

/// `vyr-mtlx schema`.
struct SchemaCommand
{
    /// Empty: all.
    std::string name;
    bool json = false;
};

/// `vyr-mtlx init`.
struct InitCommand
{
    /// Searched for images, with all folders in it.
    std::string folder;
    /// Empty: "materials.json" in the folder.
    std::string output;
};

/// `vyr-mtlx preview`.
struct PreviewCommand
{
    /// What to convert; the output is the folder of the page.
    ConvertCommand convert;
    bool watch = false;
    bool pictures = false;
    /// The program that draws pictures; empty: looked for.
    std::string browser;
};

/// `vyr-mtlx validate`.
struct ValidateCommand
{
    std::vector<std::string> files;
    bool json = false;
};

/// `vyr-mtlx bake normal`.
struct BakeNormalCommand
{
    std::string image;
    std::string output;
    MaterialTranslation::NormalBakeOptions options;
};

/// `vyr-mtlx bake noise`.
struct BakeNoiseCommand
{
    std::string output;
    /// Width and height in pixels, where `options` has none; 0: none either.
    int resolution = 0;
    /// The colours count when one of them was given.
    bool inColor = false;
    std::array<float, 3> color1{0.0f, 0.0f, 0.0f};
    std::array<float, 3> color2{1.0f, 1.0f, 1.0f};
    MaterialTranslation::NoiseBakeOptions options;
};

/// `vyr-mtlx bake` of a procedural texture.
struct BakeTextureCommand
{
    std::string output;
    std::string pixels = "color";
    int resolution = 1024;
    MaterialTranslation::TextureBakeOptions options;
};

/// A command, or nothing but to end, because help was printed or the arguments are wrong.
using Request = std::variant<ExitStatus, ConvertCommand, OverlayCommand, ListCommand, SchemaCommand,
                             InitCommand, PreviewCommand, ValidateCommand, BakeNormalCommand,
                             BakeNoiseCommand, BakeTextureCommand>;

/// Reads the arguments; prints the help and the version to standard output, and what is wrong to
/// standard error.
Request parseCommandLine(int count, const char* const* arguments);

ExitStatus run(const ConvertCommand& command);
ExitStatus run(const OverlayCommand& command);
ExitStatus run(const ListCommand& command);
ExitStatus run(const SchemaCommand& command);
ExitStatus run(const InitCommand& command);
ExitStatus run(const PreviewCommand& command);
ExitStatus run(const ValidateCommand& command);
ExitStatus run(const BakeNormalCommand& command);
ExitStatus run(const BakeNoiseCommand& command);
ExitStatus run(const BakeTextureCommand& command);

} // namespace vyr::cli
