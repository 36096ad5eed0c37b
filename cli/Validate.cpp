#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <MaterialTranslation/Validation.h>

#include "Commands.h"
#include "Console.h"
#include "DocumentForm.h"
#include "Paths.h"

namespace vyr::cli
{
namespace
{

bool areFiles(const std::vector<std::string>& files)
{
    bool good = true;
    for (const std::string& file : files)
    {
        std::error_code error;
        if (std::filesystem::is_regular_file(pathFromUtf8(file), error))
            continue;
        complain("vyr-mtlx: " + file + ": " + (error ? error.message() : "not a file"));
        good = false;
    }
    return good;
}

bool isValid(const std::string& file)
{
    const auto messages = MaterialTranslation::validateFile(pathFromUtf8(file));
    for (const MaterialTranslation::ValidationMessage& message : messages)
        complain(file + ": " + withPath(message));
    return messages.empty();
}

} // namespace

ExitStatus run(const ValidateCommand& command)
{
    if (!areFiles(command.files))
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

} // namespace vyr::cli
