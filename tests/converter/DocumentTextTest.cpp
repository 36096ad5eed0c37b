#include <string>

#include <gtest/gtest.h>

#include <MaterialTranslation/DocumentIO.h>
#include <MaterialXFormat/XmlIo.h>

namespace vyr::MaterialTranslation
{

namespace mx = MaterialX;

/// MaterialX's reader is lenient: what it reads back may still be no XML for others.
TEST(DocumentText, IsXmlWhateverItsTextsHold)
{
    const std::string texts[] = {"a<b",  "<<",        "x.<UDIM>.png",  "\"quoted <\"",
                                 "&lt;", "a>b & 'c'", "lines\n  <b\n<"};
    for (const std::string& text : texts)
    {
        const mx::DocumentPtr document = mx::createDocument();
        document->addChildOfCategory(mx::CommentElement::CATEGORY)
            ->setDocString("> a \"comment\" <x>");
        document->addNode("image", "node", "color3")
            ->setInputValue("file", text, mx::FILENAME_TYPE_STRING);
        const std::string xml = documentToXml(document);
        const std::size_t start = xml.find("value=\"") + 7;
        const std::string written = xml.substr(start, xml.find('"', start) - start);
        EXPECT_EQ(written.find('<'), std::string::npos) << xml;
        const mx::DocumentPtr read = mx::createDocument();
        mx::readFromXmlString(read, xml);
        EXPECT_EQ(read->getNode("node")->getInputValue("file")->getValueString(), text) << xml;
    }
}

} // namespace vyr::MaterialTranslation
