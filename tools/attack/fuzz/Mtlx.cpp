#include "Targets.h"

#include <algorithm>
#include <exception>
#include <vector>

#include <MaterialXCore/Document.h>
#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/DocumentIO.h>
#include <MaterialTranslation/NodeForms.h>
#include <MaterialTranslation/Validation.h>

#include "support/TemporaryFolder.h"

namespace vyr::attack
{

namespace mx = MaterialX;
using namespace MaterialTranslation;

namespace
{

bool isUnreadable(const std::vector<ValidationMessage>& messages)
{
    return std::any_of(messages.begin(), messages.end(),
                       [](const auto& m) { return m.code == ValidationCode::Unreadable; });
}

std::string badMessage(const std::vector<ValidationMessage>& messages)
{
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
    for (const ValidationMessage& message : messages)
        if (message.text.empty() ||
            std::any_of(message.text.begin(), message.text.end(), isControl))
            return "message: " + message.text;
    return {};
}

/// A form that is applied again changes nothing.
std::string tryForm(const std::string& bytes, NodeForm form)
{
    const mx::DocumentPtr document = mx::createDocument();
    mx::XmlReadOptions options;
    options.readXIncludeFunction = nullptr;
    mx::readFromXmlString(document, bytes, mx::FileSearchPath(), &options);
    std::string wrong = badMessage(applyNodeForm(document, form));
    const std::string once = documentToXml(document);
    applyNodeForm(document, form);
    if (wrong.empty() && documentToXml(document) != once)
        wrong = "a form that is applied again changes the document:\n" + once + "\n--\n" +
                documentToXml(document);
    return wrong;
}

} // namespace

std::string tryMtlx(const std::string& bytes)
{
    static const support::TemporaryFolder folder;
    std::filesystem::remove(folder / "f.mtlx");
    const auto messages = validateFile(folder.write("f.mtlx", bytes));
    const std::string wrong = badMessage(messages);
    if (!wrong.empty() || isUnreadable(messages))
        return wrong;
    // One of both, so that twice as many documents are tried.
    return tryForm(bytes, bytes.size() % 2 == 0 ? NodeForm::Embed : NodeForm::Standard);
}

} // namespace vyr::attack
