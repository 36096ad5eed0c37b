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

/// All codes: constant and stable name. docs/validation.md explains each.
// clang-format off
#define VYR_MTLX_VALIDATION_CODES(X)                                            \
    X(Unreadable, "unreadable")                                                 \
    X(Rule, "materialx-rule")                                                   \
    X(ValueInvalid, "value-invalid")                                            \
    X(ValueRange, "value-range")                                                \
    X(ChoiceUnknown, "choice-unknown")                                          \
    X(NodeUndefined, "node-undefined")                                          \
    X(InputUnbound, "input-unbound")                                            \
    X(ColorSpaceUnknown, "color-space-unknown")                                 \
    X(UnitTypeUnknown, "unit-type-unknown")                                     \
    X(UnitUnknown, "unit-unknown")                                              \
    X(UnitMissing, "unit-missing")                                              \
    X(UnitMisfit, "unit-misfit")                                                \
    X(FileMissing, "file-missing")                                              \
    X(MaterialMissing, "material-missing")                                      \
    X(GraphEmpty, "graph-empty")                                                \
    X(Inheritance, "inheritance")                                               \
    X(ConnectionLoop, "connection-loop")                                        \
    X(ConnectionDepth, "connection-depth")                                      \
    X(DefinitionLoop, "definition-loop")                                        \
    X(NameTwice, "name-twice")
// clang-format on

/// What is wrong in a document.
enum class ValidationCode
{
#define VYR_MTLX_ENUMERATOR(constant, name) constant,
    VYR_MTLX_VALIDATION_CODES(VYR_MTLX_ENUMERATOR)
#undef VYR_MTLX_ENUMERATOR
};

/// Stable name of a code, such as "file-missing".
VYR_MTLX_API const char* validationCodeName(ValidationCode code);

/// One thing that is wrong.
struct ValidationMessage
{
    /// Path of the element, such as "NG_oak/color/file"; empty for the document as a whole.
    std::string path;
    ValidationCode code = ValidationCode::Rule;
    /// One sentence in English on one line, without the path.
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
