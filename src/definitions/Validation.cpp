#include <MaterialTranslation/Validation.h>

#include <utility>

#include <fmt/ranges.h>

#include "base/Paths.h"
#include "base/Text.h"
#include "definitions/Checks.h"

namespace vyr::MaterialTranslation
{

namespace mx = MaterialX;

namespace
{

using definitions::Checks;

void checkColorSpace(const mx::Element& element, Checks& checks)
{
    const std::string& name = element.getColorSpace();
    if (!name.empty() && !checks.definitions.knowsColorSpace(name))
        checks.report(element, ValidationCode::ColorSpaceUnknown,
                      fmt::format("unknown colour space \"{}\"; known are {}", name,
                                  fmt::join(checks.definitions.colorSpaces, ", ")));
}

/// MaterialX itself finds a known category without the node's type.
void checkNode(const mx::Node& node, Checks& checks)
{
    const std::string& category = node.getCategory();
    if (checks.definitions.categories.count(category) == 0 && !node.getNodeDef())
        checks.report(node, ValidationCode::NodeUndefined, "no definition of \"" + category + "\"");
}

void checkAssignment(const mx::MaterialAssign& assignment, Checks& checks)
{
    const mx::NodePtr node = assignment.getReferencedMaterial();
    const bool isMaterial = node && (node->getType() == mx::MATERIAL_TYPE_STRING ||
                                     node->getType() == mx::MULTI_OUTPUT_TYPE_STRING);
    // A graph gives materials by its outputs.
    if (!isMaterial && assignment.getMaterialOutputs().empty())
        checks.report(assignment, ValidationCode::MaterialMissing,
                      "there is no material \"" + assignment.getMaterial() + "\"");
}

void checkGraph(const mx::NodeGraph& graph, Checks& checks)
{
    const bool hasNodes = !graph.getNodes().empty();
    const bool hasOutputs = graph.getOutputCount() != 0;
    if (!hasNodes || !hasOutputs)
        checks.report(graph, ValidationCode::GraphEmpty,
                      hasNodes     ? "the node graph has no output"
                      : hasOutputs ? "the node graph has no nodes"
                                   : "the node graph is empty");
}

/// The checks that MaterialX does not make.
void checkElement(const mx::Element& element, Checks& checks)
{
    checkColorSpace(element, checks);
    if (const auto* node = dynamic_cast<const mx::Node*>(&element))
        checkNode(*node, checks);
    else if (const auto* value = dynamic_cast<const mx::ValueElement*>(&element))
        checkValue(*value, checks);
    else if (const auto* graph = dynamic_cast<const mx::NodeGraph*>(&element))
        checkGraph(*graph, checks);
    else if (const auto* assignment = dynamic_cast<const mx::MaterialAssign*>(&element))
        checkAssignment(*assignment, checks);
}

/// How an element is looked at.
struct Mode
{
    /// Whether MaterialX's own validation finds anything in the document. Only then each element is asked.
    bool breaksRules = false;
    /// The values of a definition are defaults, whose units its users choose.
    bool inDefinition = false;
};

void checkTree(const mx::ElementPtr& element, Mode mode, Checks& checks)
{
    mode.inDefinition |= element->getCategory() == mx::NodeDef::CATEGORY;
    if (mode.breaksRules)
        checkRules(element, checks);
    if (!mode.inDefinition)
        checkElement(*element, checks);
    else if (const auto* value = dynamic_cast<const mx::ValueElement*>(element.get()))
        checkWholeText(*value, checks);
    for (const mx::ElementPtr& child : element->getChildren())
        checkTree(child, mode, checks);
}

/// The folder of the document's own file, then the caller's.
mx::FileSearchPath searchPathOf(const mx::Document& document,
                                const std::vector<std::filesystem::path>& folders)
{
    mx::FileSearchPath path;
    if (document.hasSourceUri())
        path.append(mx::FilePath(document.getSourceUri()).getParentPath());
    for (const std::filesystem::path& folder : folders)
        path.append(mx::FilePath(base::utf8FromPath(folder)));
    return path;
}

} // namespace

std::vector<ValidationMessage> definitions::onOneLine(std::vector<ValidationMessage> messages)
{
    for (ValidationMessage& message : messages)
        message.text = base::printable(message.text);
    return messages;
}

const char* validationCodeName(ValidationCode code)
{
    switch (code)
    {
#define VYR_MTLX_NAME(constant, name)                                                              \
    case ValidationCode::constant:                                                                 \
        return name;
        VYR_MTLX_VALIDATION_CODES(VYR_MTLX_NAME)
#undef VYR_MTLX_NAME
    }
    return "unknown";
}

std::vector<ValidationMessage> validateDocument(const mx::DocumentPtr& document,
                                                const ValidationOptions& options)
{
    const auto definitions = definitions::definitionsOf(options.definitions);
    const definitions::DataLibraryScope scope(document, definitions->library);
    std::vector<ValidationMessage> messages;
    Checks checks{*definitions, searchPathOf(*document, options.searchFolders), messages};
    if (checkStructure(document, checks))
        checkTree(document, {!document->validate()}, checks);
    return definitions::onOneLine(std::move(messages));
}

std::vector<ValidationMessage> validateFile(const std::filesystem::path& file,
                                            const ValidationOptions& options)
{
    std::vector<ValidationMessage> messages;
    mx::DocumentPtr document;
    try
    {
        document = definitions::readDocument(file, messages);
    }
    catch (const definitions::UnreadableDocument& error)
    {
        return definitions::onOneLine({{"", ValidationCode::Unreadable, error.what()}});
    }
    const std::vector<ValidationMessage> found = validateDocument(document, options);
    messages.insert(messages.end(), found.begin(), found.end());
    return definitions::onOneLine(std::move(messages));
}

} // namespace vyr::MaterialTranslation
