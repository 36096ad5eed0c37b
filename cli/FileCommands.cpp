#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/Validation.h>

#include "CommandLine.h"
#include "Console.h"
#include "base/Paths.h"
#include "batch/Output.h"

// The commands that need no asset library.
namespace vyr::cli
{
namespace
{

/// Whether the text names an ordinary file; standard error says why not.
bool isInputFile(const std::string& file)
{
    std::error_code error;
    if (std::filesystem::is_regular_file(base::pathFromUtf8(file), error))
        return true;
    complain("vyr-mtlx: " + file + ": " + (error ? error.message() : "not a file"));
    return false;
}

bool isValid(const std::string& file)
{
    const auto messages = MaterialTranslation::validateFile(base::pathFromUtf8(file));
    for (const MaterialTranslation::ValidationMessage& message : messages)
        complain(file + ": " + batch::withPath(message));
    return messages.empty();
}

ExitStatus tell(const MaterialTranslation::BakeResult& result, const std::string& output)
{
    for (const std::string& warning : result.warnings)
        complain("vyr-mtlx: warning: " + warning);
    if (!result.success)
    {
        complain("vyr-mtlx: " + result.message);
        return ExitStatus::SomeFailed;
    }
    Results results;
    results.write(output + '\n');
    return results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

} // namespace

ExitStatus run(const ValidateCommand& command)
{
    // Each that is missing is told.
    if (std::ranges::count_if(command.files, isInputFile) < std::ssize(command.files))
        return ExitStatus::WrongUse;
    bool allValid = true;
    Results results;
    for (const std::string& file : command.files)
    {
        const bool valid = isValid(file);
        allValid = allValid && valid;
        if (valid)
            results.write(file + '\n');
    }
    return allValid && results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

ExitStatus run(const BakeNormalCommand& command)
{
    if (!isInputFile(command.image))
        return ExitStatus::WrongUse;
    finishBeforeStopping();
    return tell(MaterialTranslation::bakeNormalMapFile(base::pathFromUtf8(command.image),
                                                       base::pathFromUtf8(command.output),
                                                       command.options),
                command.output);
}

ExitStatus run(const BakeNoiseCommand& command)
{
    MaterialTranslation::NoiseBakeOptions options = command.options;
    options.width = options.width ? options.width : command.resolution;
    options.height = options.height ? options.height : command.resolution;
    if (command.inColor)
    {
        options.color1 = command.color1;
        options.color2 = command.color2;
    }
    finishBeforeStopping();
    return tell(MaterialTranslation::bakeNoiseFile(base::pathFromUtf8(command.output), options),
                command.output);
}

ExitStatus run(const BakeTextureCommand& command)
{
    using MaterialTranslation::TextureOutput;
    MaterialTranslation::TextureBakeOptions options = command.options;
    options.width = command.resolution;
    options.height = command.resolution;
    options.output = command.pixels == "normal"   ? TextureOutput::Normal
                     : command.pixels == "number" ? TextureOutput::Number
                                                  : TextureOutput::Color;
    finishBeforeStopping();
    return tell(MaterialTranslation::bakeTextureFile(base::pathFromUtf8(command.output), options),
                command.output);
}

} // namespace vyr::cli
