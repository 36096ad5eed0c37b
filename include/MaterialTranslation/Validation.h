#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Definitions.h>
#include <MaterialTranslation/Export.h>

/// @file
/// Checks of whole documents: MaterialX's own, and what it lets pass. docs/validation.md lists them.

namespace vyr::MaterialTranslation
{

/// What is wrong in a document.
enum class ValidationCode
{
    /// The file is not there, is no XML, or is no MaterialX document.
    Unreadable,
    /// One of MaterialX's own rules that has no code of its own here.
    Rule,
    /// A text that is no value of its type, or only begins like one.
    ValueInvalid,
    /// A value that a form would have in another unit, in which no 32-bit float can hold it.
    ValueRange,
    /// A value that is not among those that the definition of the input allows, such as an address mode.
    ChoiceUnknown,
    /// No definition fits a node: its category is unknown, or not for its type.
    NodeUndefined,
    /// An input of a node has neither a value nor a connection.
    InputUnbound,
    ColorSpaceUnknown,
    UnitTypeUnknown,
    UnitUnknown,
    /// A value has a unit type, but no unit.
    UnitMissing,
    /// A unit of another kind than the input takes, such as an angle for a length.
    UnitMisfit,
    /// An image or other file that does not exist.
    FileMissing,
    /// A material assignment names no material, or one that the document does not have.
    MaterialMissing,
    /// A node graph without nodes, or without an output.
    GraphEmpty,
};

/// Stable name of a code, such as "file-missing".
VYR_MTLX_API const char* validationCodeName(ValidationCode code);

/// One thing that is wrong.
struct ValidationMessage
{
    /// Path of the element, such as "NG_oak/color/file"; empty for the document as a whole.
    std::string path;
    ValidationCode code = ValidationCode::Rule;
    /// One sentence in English, without the path.
    std::string text;
};

struct ValidationOptions
{
    /// Folders that relative file names are looked up in, after the folder of the document's own file. With
    /// neither, they are relative to the working directory.
    std::vector<std::filesystem::path> searchFolders;
    /// The definitions that a reader is taken to have. A data library of the document's own counts for
    /// nothing.
    DefinitionSet definitions = DefinitionSet::All;
};

/// Everything that is wrong in a document, in document order; nothing for a good one.
/// @param document not null; the same after the call as before, but not to be read by another thread
///        meanwhile.
/// @throws what definitionLibrary throws.
VYR_MTLX_API std::vector<ValidationMessage> validateDocument(const MaterialX::DocumentPtr& document,
                                                             const ValidationOptions& options = {});

/// Everything that is wrong in a ".mtlx" file. Older versions of MaterialX are brought up to date
/// first, and files that it includes are read, as MaterialX does.
/// @throws what definitionLibrary throws; a file that cannot be read is a message.
VYR_MTLX_API std::vector<ValidationMessage> validateFile(const std::filesystem::path& file,
                                                         const ValidationOptions& options = {});

} // namespace vyr::MaterialTranslation
