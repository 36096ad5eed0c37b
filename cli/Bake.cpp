#include <filesystem>
#include <string>
#include <system_error>

#include <MaterialTranslation/Bakes.h>

#include "Commands.h"
#include "Console.h"
#include "Interruption.h"
#include "Paths.h"

namespace vyr::cli
{
namespace
{

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

ExitStatus run(const BakeNormalCommand& command)
{
    const std::filesystem::path image = pathFromUtf8(command.image);
    std::error_code error;
    if (!std::filesystem::is_regular_file(image, error))
    {
        complain("vyr-mtlx: " + command.image + ": " + (error ? error.message() : "not a file"));
        return ExitStatus::WrongUse;
    }
    finishBeforeStopping();
    const std::filesystem::path output = pathFromUtf8(command.output);
    return tell(MaterialTranslation::bakeNormalMapFile(image, output, command.options),
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
    const std::filesystem::path output = pathFromUtf8(command.output);
    return tell(MaterialTranslation::bakeNoiseFile(output, options), command.output);
}

} // namespace vyr::cli
