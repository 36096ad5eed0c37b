#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <MaterialXFormat/XmlIo.h>

#include <MaterialTranslation/Validation.h>

#include "Documents.h"
#include "support/TemporaryFolder.h"

namespace vyr::tests
{
namespace
{

namespace mx = MaterialX;
using namespace MaterialTranslation;

/// "path: code: text" of each message.
std::vector<std::string> lines(const std::vector<ValidationMessage>& messages)
{
    std::vector<std::string> result;
    for (const ValidationMessage& message : messages)
        result.push_back(message.path + ": " + validationCodeName(message.code) + ": " +
                         message.text);
    return result;
}

std::string graph(const std::string& nodes)
{
    return R"(<nodegraph name="g">)" + nodes +
           R"(<output name="o" type="float" nodename="n"/></nodegraph>)";
}

std::string constant(const std::string& attributes)
{
    return graph(R"(<constant name="n" type="float"><input name="value" type="float" )" +
                 attributes + "/></constant>");
}

void expectMessages(const std::vector<std::string>& actual,
                    const std::vector<std::string>& beginnings, const std::string& content)
{
    ASSERT_EQ(actual.size(), beginnings.size()) << content << "\n"
                                                << ::testing::PrintToString(actual);
    for (std::size_t i = 0; i < actual.size(); ++i)
        EXPECT_EQ(actual[i].substr(0, beginnings[i].size()), beginnings[i]) << content << "\n"
                                                                            << actual[i];
}

TEST(Validation, TellsWhatIsWrongAndWhere)
{
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {R"(<kvor:felt name="s" type="surfaceshader"/>)",
         {R"(s: node-undefined: no definition of "kvor:felt")"}},
        {R"(<kvor:bitmap name="b" type="matrix33"/>)",
         {R"(b: node-undefined: no definition of "kvor:bitmap" is of type "matrix33"; there are color3, color4, float, vector3)"}},
        {R"(<constant name="c" type="float" nodedef="ND_gone"/><constnt name="d" type="float" nodedef="ND_gone"/>)",
         {R"(c: node-undefined: )", R"(d: node-undefined: no definition of "constnt")"}},
        {R"(<kvor:metal name="m" type="surfaceshader"><input name="shine" type="float" value="1"/></kvor:metal>)",
         {"m: materialx-rule: Node interface error: "}},
        {constant(R"(value="1" colorspace="sRGB")"),
         {R"(g/n/value: color-space-unknown: unknown colour space "sRGB"; known are none, lin_rec709, )"}},
        {constant(R"(value="1" colorspace="none")"), {}},
        {constant(R"(value="1" unit="inch" unittype="distance")"), {}},
        {constant(R"(value="1" unit="furlong" unittype="distance")"),
         {R"(g/n/value: unit-unknown: no unit "furlong" of type "distance"; there are nanometer, micron, )"}},
        {constant(R"(value="1" unit="inch")"),
         {R"(g/n/value: unit-unknown: the unit "inch" has no unit type)"}},
        {constant(R"(value="1" unit="lumen" unittype="flux")"),
         {R"(g/n/value: unit-type-unknown: unknown unit type "flux")"}},
        {constant(R"(value="1" unittype="distance")"),
         {R"(g/n/value: unit-missing: the value has the unit type "distance" but no unit)"}},
        {constant(R"(value="1" unit="" unittype="distance")"),
         {R"(g/n/value: unit-unknown: no unit "")"}},
        {constant(""), {"g/n/value: input-unbound: "}},
        {constant(R"(value="much")"),
         {R"(g/n/value: materialx-rule: "much" is no value of type "float")"}},
        {constant(R"(nodename="gone")"), {"g/n/value: materialx-rule: Invalid port connection"}},
        {R"(<nodegraph name="g"/>)", {"g: graph-empty: the node graph is empty"}},
        {R"(<nodegraph name="g"><constant name="n" type="float"/></nodegraph>)",
         {"g: graph-empty: the node graph has no output"}},
        {graph(""),
         {"g: graph-empty: the node graph has no nodes",
          "g/o: materialx-rule: Invalid port connection"}},
        {R"(<image name="i" type="color3"><input name="file" type="filename" value="gone.png"/></image>)",
         {R"(i/file: file-missing: there is no file "gone.png")"}},
        {R"(<image name="i" type="color3"><input name="file" type="filename" value="t.&lt;UDIM&gt;.png"/></image>)",
         {}},
        {R"(<image name="i" type="color3"><input name="file" type="filename" value=""/></image>)",
         {}},
        // A definition's defaults have no unit: its users choose.
        {R"(<nodedef name="ND_x" node="x"><input name="a" type="float" value="1" unittype="distance"/><output name="out" type="float"/></nodedef>)",
         {}},
        // Two elements alike but for their place, one of them in order.
        {graph(R"(<add name="n" type="float"><input name="in1" type="float"/></add>)") +
             R"(<add name="n" type="float"><input name="in1" type="float" value="2"/></add>)",
         {"g/n/in1: input-unbound: "}},
    };
    for (const auto& [content, messages] : cases)
        expectMessages(lines(validateDocument(documentOf(content))), messages, content);
}

TEST(Validation, LooksFilesUpAsMaterialXDoes)
{
    const support::TemporaryFolder folder;
    const support::TemporaryFolder other;
    folder.write("images/here.png", "");
    other.write("there.png", "");
    const std::pair<std::string, bool> cases[] = {
        {R"(<image name="i" type="color3"><input name="file" type="filename" value="images/here.png"/></image>)",
         true},
        {R"(<image name="i" type="color3"><input name="file" type="filename" value="here.png" fileprefix="images/"/></image>)",
         true},
        {R"(<image name="i" type="color3" fileprefix="images/"><input name="file" type="filename" value=")" +
             (folder / "images/here.png").generic_string() + R"("/></image>)",
         true},
        {R"(<token name="kind" type="string" value="here"/><image name="i" type="color3"><input name="file" type="filename" value="images/[kind].png"/></image>)",
         true},
        {R"(<image name="i" type="color3"><input name="file" type="filename" value="there.png"/></image>)",
         true},
        {R"(<image name="i" type="color3"><input name="file" type="filename" value="here.png"/></image>)",
         false},
        {R"(<image name="i" type="color3"><input name="file" type="filename" value="images"/></image>)",
         false},
    };
    for (const auto& [content, found] : cases)
    {
        const std::string text =
            "<?xml version=\"1.0\"?><materialx version=\"1.39\">" + content + "</materialx>";
        const auto messages =
            validateFile(folder.write("document.mtlx", text), {{other.path()}, {}});
        EXPECT_EQ(messages.empty(), found) << content;
        for (const ValidationMessage& message : messages)
            EXPECT_EQ(message.code, ValidationCode::FileMissing) << message.text;
    }
}

TEST(Validation, ReadsFilesOrSaysWhereTheyBreak)
{
    const support::TemporaryFolder folder;
    const std::pair<std::string, std::string> cases[] = {
        {"<?xml version=\"1.0\"?>\n<materialx version=\"1.39\">\n  <constant name=\"a\" "
         "<\n</materialx>",
         "line 3, column 22: "},
        {"<?xml version=\"1.0\"?>\n<materialx version=\"1.39\">", "line 2, column "},
        {"", "line 1, column 1: "},
        {std::string("<materialx version=\"1.39\">\n\0</materialx>", 40),
         "line 2, column 1: a zero byte"},
        {"<?xml version=\"1.0\"?><scene/>", "No root MaterialX element"},
        {"<?xml version=\"1.0\"?><materialx xmlns:xi=\"x\"><xi:include "
         "href=\"gone.mtlx\"/></materialx>",
         "Failed to open file"},
    };
    for (const auto& [text, beginning] : cases)
        expectMessages(lines(validateFile(folder.write("bad.mtlx", text))),
                       {": unreadable: " + beginning}, text);
    expectMessages(lines(validateFile(folder / "none.mtlx")),
                   {": unreadable: there is no such file"}, "");
    expectMessages(lines(validateFile(folder.path())), {": unreadable: it is a folder"}, "");

    const std::string older = R"(<?xml version="1.0"?><materialx version="1.38">
        <invert name="i" type="float"><input name="in" type="float" value="1"/></invert></materialx>)";
    EXPECT_EQ(lines(validateFile(folder.write("older.mtlx", older))), std::vector<std::string>{});
}

TEST(Validation, LeavesTheDocumentAlone)
{
    const mx::DocumentPtr own = mx::createDocument();
    for (const mx::ConstDocumentPtr& library : {mx::ConstDocumentPtr(), mx::ConstDocumentPtr(own)})
        for (const Sample& sample : samples())
        {
            sample.document->setDataLibrary(library);
            const std::string before = mx::writeToXmlString(sample.document);
            EXPECT_EQ(lines(validateDocument(sample.document)), std::vector<std::string>{});
            EXPECT_EQ(mx::writeToXmlString(sample.document), before);
            EXPECT_EQ(sample.document->getDataLibrary(), library);
        }
}

} // namespace
} // namespace vyr::tests
