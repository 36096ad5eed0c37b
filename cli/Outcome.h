#pragma once

#include <exception>
#include <string>
#include <vector>

#include <MaterialTranslation/Diagnostics.h>

namespace vyr::cli
{

/// Something that was lost or changed on the way.
struct Warning
{
    /// Stable name of what it is about, such as "texture-file-missing".
    std::string code;
    /// The property concerned; may be empty.
    std::string property;
    std::string text;
};

/// What came of one material or overlay.
struct Outcome
{
    bool converted = false;
    /// Why it was not.
    std::string message;
    /// The document that was written; empty when none was.
    std::string document;
    /// The image files that the document names, as it names them, each once. Only for a report.
    std::vector<std::string> textures;
    std::vector<Warning> warnings;
};

/// "text: property", the form in which diagnostics are printed; the text alone without a property.
std::string withProperty(const std::string& text, const std::string& property);

/// Adds the diagnostics of this thread's last conversion to an outcome: warnings to its warnings,
/// errors to its message.
void addDiagnostics(Outcome& outcome);

/// What to say about a file that could not be written.
std::string writeFailure(const std::string& file, const std::exception& error);

/// The line about a failure, and the lines about warnings, as they are printed.
/// @param file the file that the subject comes from.
/// @param subject for example `material "mat-3" (GenericSchema)`.
std::string messageLines(const std::string& file, const std::string& subject,
                         const Outcome& outcome);

} // namespace vyr::cli
