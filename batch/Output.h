#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Validation.h>

#include "base/WriteFile.h"

/// @file
/// What comes of a conversion: files in a folder, and messages.
namespace vyr::batch
{

/// The folder that documents are written into.
struct OutputFolder
{
    /// As the user wrote it, for messages and results.
    std::filesystem::path shown;
    /// Absolute, without "." and ".." components, symbolic links as they stand.
    std::filesystem::path absolute;
    /// Absolute, symbolic links resolved.
    std::filesystem::path canonical;
};

/// Makes the folder, with its parents, when it is missing.
/// @throws Refusal when that cannot be done.
OutputFolder makeOutputFolder(const std::string& path);

/// The file with the folder that it is in resolved, so that two spellings of one place compare
/// equal; the file itself need not exist, and a symbolic link stays one.
std::filesystem::path placeOf(const std::filesystem::path& file);

/// Rewrites the paths of a document's images inside the folder relative to it, with forward slashes, so
/// that the folder can be moved as a whole with the documents in it. All other paths stay as they are.
void makeImagePathsRelative(const MaterialX::DocumentPtr& document, const OutputFolder& folder);

/// The file name of a document.
std::filesystem::path documentFile(const std::string& name);

/// Something that was lost or changed on the way, or that failed it.
struct Remark
{
    /// Stable name of what it is about, such as "texture-file-missing".
    std::string code;
    /// The property concerned; may be empty.
    std::string property;
    std::string text;
};

/// An image that was written for a document into the folder of its name, as it is known again.
struct WrittenImage
{
    /// Notes an image that is there.
    /// @param isCopy  told by size and time, which are its source's, not by its bytes, which would have to be read.
    static WrittenImage at(const std::filesystem::path& file, bool isCopy);

    bool isAt(const std::filesystem::path& file) const;

    std::string file;
    /// Empty for a copy.
    std::string hash;
    std::int64_t size = 0;
    std::int64_t time = 0;
};

struct WrittenDocument
{
    std::string hash;
    std::vector<WrittenImage> images;
};

/// What came of one material or overlay.
struct Outcome
{
    bool converted = false;
    /// The document was there already, with the same bytes.
    bool unchanged = false;
    /// Images that were baked, and bakes that were there already.
    std::int64_t baked = 0;
    std::int64_t kept = 0;
    /// What was written, also when it was there already.
    WrittenDocument written;
    /// Why it was not.
    std::string message;
    /// The document that was written; empty when none was.
    std::string document;
    /// The image files that the document names, as it names them, each once, if they are to be listed.
    std::vector<std::string> textures;
    std::vector<Remark> warnings;
    /// What of the message comes with a code.
    std::vector<Remark> errors;
};

/// Adds the diagnostics of this thread's last conversion to an outcome: warnings to its warnings,
/// errors to its message.
/// @param reason the message of a failure that no diagnostic explains; empty when there is none.
void addDiagnostics(Outcome& outcome, const std::string& reason);

/// What to say about a file that could not be written.
std::string writeFailure(const std::string& file, const std::string& reason);

/// Writes a document, and notes in the outcome what came of that.
void writeDocument(const std::filesystem::path& file, std::string_view text, base::SameBytes same,
                   Outcome& outcome);

/// "path: text"; the text alone for the document as a whole.
std::string withPath(const MaterialTranslation::ValidationMessage& message);

/// The line about a failure, and the lines about warnings, as they are printed.
/// @param file the file that the subject comes from.
/// @param subject for example `material "mat-3" (GenericSchema)`.
std::string messageLines(const std::string& file, const std::string& subject,
                         const Outcome& outcome);

} // namespace vyr::batch
