#include "Outcome.h"

#include <filesystem>

#include "Console.h"

namespace vyr::cli
{

std::string withProperty(const std::string& text, const std::string& property)
{
    return property.empty() ? text : text + ": " + property;
}

void addDiagnostics(Outcome& outcome)
{
    namespace mt = MaterialTranslation;
    for (const mt::Diagnostic& diagnostic : mt::lastDiagnostics())
    {
        if (diagnostic.severity == mt::Severity::Error)
        {
            if (!outcome.message.empty())
                outcome.message += "; ";
            outcome.message += withProperty(diagnostic.text, diagnostic.property);
        }
        else
        {
            outcome.warnings.push_back(
                {mt::diagnosticCodeName(diagnostic.code), diagnostic.property, diagnostic.text});
        }
    }
}

std::string writeFailure(const std::string& file, const std::exception& error)
{
    const auto* system = dynamic_cast<const std::filesystem::filesystem_error*>(&error);
    return "cannot write " + file + ": " + (system ? system->code().message() : error.what());
}

std::string messageLines(const std::string& file, const std::string& subject,
                         const Outcome& outcome)
{
    std::string lines;
    for (const Warning& warning : outcome.warnings)
    {
        lines += oneLine(file + ": warning: " + subject + ": " +
                         withProperty(warning.text, warning.property));
        lines += '\n';
    }
    if (!outcome.converted)
        lines += oneLine(file + ": " + subject + ": " + outcome.message) + '\n';
    return lines;
}

} // namespace vyr::cli
