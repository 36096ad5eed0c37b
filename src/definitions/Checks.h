#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <MaterialTranslation/Validation.h>
#include <MaterialXCore/Document.h>
#include <MaterialXFormat/File.h>

#include "definitions/DataLibrary.h"

namespace vyr::MaterialTranslation::definitions
{

/// The validation of one document, which has its data library. All that it refers to is borrowed.
struct Checks
{
    const Definitions& definitions;
    /// Where relative file names are looked up.
    MaterialX::FileSearchPath searchPath;
    std::vector<ValidationMessage>& messages;

    void report(const MaterialX::Element& element, ValidationCode code, std::string text)
    {
        messages.push_back({element.getNamePath(), code, std::move(text)});
    }
};

/// Each message on one line: documents may have anything in their texts.
std::vector<ValidationMessage> onOneLine(std::vector<ValidationMessage> messages);

/// Loops of inheritance, and chains too long for it, on which MaterialX's functions throw or take minutes.
/// @return whether MaterialX can look elements up along inheritance.
bool checkInheritance(const MaterialX::DocumentPtr& document, Checks& checks);

/// Loops of inheritance, of connections and of definitions, on which MaterialX's functions do not end or throw,
/// and chains that are too long for them.
/// @return whether MaterialX can validate the document; loops of connections and definitions do not keep it from
///         that.
bool checkStructure(const MaterialX::DocumentPtr& document, Checks& checks);

/// What MaterialX's own validation says about an element, without what it says about its children.
void checkRules(const MaterialX::ElementPtr& element, Checks& checks);

/// Whether nothing of a value's text is left over behind what MaterialX reads.
void checkWholeText(const MaterialX::ValueElement& value, Checks& checks);

/// The text, choice, unit and file name of a value.
void checkValue(const MaterialX::ValueElement& value, Checks& checks);

/// A file is no document; the text says where and why, without the file's name.
class UnreadableDocument : public std::runtime_error
{
  public:
    using std::runtime_error::runtime_error;
};

/// Reads a ".mtlx" file and what it includes, at most 1,000 files, and brings it up to MaterialX's current version.
/// @param messages gets what MaterialX leaves out.
/// @throws UnreadableDocument
MaterialX::DocumentPtr readDocument(const std::filesystem::path& file,
                                    std::vector<ValidationMessage>& messages);

} // namespace vyr::MaterialTranslation::definitions
