#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <MaterialTranslation/Bakes.h>
#include <MaterialTranslation/Validation.h>

#include "CommandLine.h"
#include "Console.h"
#include "Json.h"
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

using Messages = std::vector<MaterialTranslation::ValidationMessage>;

void addDocument(const JsonNode& list, const std::string& file, const Messages& messages)
{
    const JsonNode document = list.addObject();
    document.add("file", file);
    document.addFlag("valid", messages.empty());
    const JsonNode all = document.addList("messages");
    for (const MaterialTranslation::ValidationMessage& message : messages)
    {
        const JsonNode entry = all.addObject();
        entry.add("code", validationCodeName(message.code));
        entry.add("path", message.path);
        entry.add("text", message.text);
    }
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
    const JsonDocument json;
    const JsonNode documents = json.root().addList("documents");
    for (const std::string& file : command.files)
    {
        const Messages messages = MaterialTranslation::validateFile(base::pathFromUtf8(file));
        allValid = allValid && messages.empty();
        if (command.json)
        {
            addDocument(documents, file, messages);
            continue;
        }
        for (const MaterialTranslation::ValidationMessage& message : messages)
            complain(file + ": " + batch::withPath(message));
        if (messages.empty())
            results.write(file + '\n');
    }
    if (command.json)
        results.write(json.text());
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
