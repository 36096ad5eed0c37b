#include "support/Documents.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include <MaterialXFormat/Util.h>
#include <MaterialXFormat/XmlIo.h>

namespace vyr::support
{

namespace mx = MaterialX;

namespace
{

using ::testing::AssertionFailure;
using ::testing::AssertionResult;
using ::testing::AssertionSuccess;

mx::ConstDocumentPtr loadDataLibrary()
{
    mx::DocumentPtr library = mx::createDocument();
    for (const mx::FilePath folder : {VYR_MATERIALX_LIBRARIES, VYR_KVOR_LIBRARY})
        mx::loadLibraries({folder.getBaseName()}, mx::FileSearchPath(folder.getParentPath()),
                          library);
    return library;
}

/// Not a number for a text that is more, or less, than one.
double numberOf(const std::string& text)
{
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return text.empty() || *end ? std::nan("") : number;
}

bool sameNumber(const std::string& actual, const std::string& expected)
{
    const double wanted = numberOf(expected);
    return std::abs(numberOf(actual) - wanted) <= 1e-5 * std::abs(wanted);
}

bool sameValue(const std::string& actual, const std::string& expected)
{
    const mx::StringVec a = mx::splitString(actual, ", ");
    const mx::StringVec e = mx::splitString(expected, ", ");
    return actual == expected || std::equal(a.begin(), a.end(), e.begin(), e.end(), sameNumber);
}

} // namespace

AssertionResult isSound(const mx::DocumentPtr& document)
{
    static const mx::ConstDocumentPtr library = loadDataLibrary();
    const std::string text = xmlOf(document);
    const mx::DocumentPtr copy = document->copy();
    copy->setDataLibrary(library);
    std::string message;
    if (!copy->validate(&message))
        return AssertionFailure() << message << "\n" << text;
    for (const mx::ElementPtr& element : copy->traverseTree())
    {
        const auto node = element->asA<mx::Node>();
        if (node && !node->getNodeDef())
            return AssertionFailure() << "no definition fits " << node->getNamePath() << "\n"
                                      << text;
    }
    const mx::DocumentPtr again = mx::createDocument();
    mx::readFromXmlString(again, text);
    if (!(*document == *again) || xmlOf(again) != text)
        return AssertionFailure() << "the document reads back differently:\n" << text;
    return AssertionSuccess();
}

std::string xmlOf(const mx::DocumentPtr& document)
{
    return mx::writeToXmlString(document);
}

mx::InputPtr inputOf(const mx::DocumentPtr& document, const std::string& node,
                     const std::string& input)
{
    const mx::NodePtr found = document->getNode(node);
    return found ? found->getInput(input) : nullptr;
}

std::vector<std::string> topLevel(const mx::DocumentPtr& document)
{
    std::vector<std::string> lines;
    for (const mx::ElementPtr& child : document->getChildren())
        lines.push_back(child->getCategory() + " " + child->getName());
    return lines;
}

AssertionResult hasInputs(const mx::DocumentPtr& document, const std::string& node,
                          const std::vector<ExpectedInput>& expected)
{
    for (const auto& [name, value] : expected)
    {
        const mx::InputPtr input = inputOf(document, node, name);
        const std::string found = input ? input->getValueString() : "missing";
        if (!sameValue(found, value) || input->hasNodeName() || input->hasNodeGraphString())
            return AssertionFailure() << name << " is " << found << " instead of " << value;
    }
    return AssertionSuccess();
}

} // namespace vyr::support
