#include "support/Documents.h"

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

} // namespace vyr::support
