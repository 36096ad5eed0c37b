#include <gtest/gtest.h>

#include <MaterialTranslation/Validation.h>

#include "Documents.h"
#include "support/TemporaryFolder.h"

namespace vyr::tests
{
namespace
{

using namespace MaterialTranslation;

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

std::string image(const std::string& file, const std::string& attributes = "")
{
    return R"(<image name="i" type="color3" )" + attributes +
           R"(><input name="file" type="filename" value=")" + file + "\"/></image>";
}

void expectMessages(const std::vector<ValidationMessage>& messages, const Lines& beginnings,
                    const std::string& content)
{
    Lines actual = lines(messages);
    for (std::size_t i = 0; i < std::min(actual.size(), beginnings.size()); ++i)
        actual[i].resize(std::min(actual[i].size(), beginnings[i].size()));
    EXPECT_EQ(actual, beginnings) << content << "\n" << ::testing::PrintToString(lines(messages));
}

TEST(Validation, TellsWhatIsWrongAndWhere)
{
    // clang-format off
    const std::pair<std::string, Lines> cases[] = {
        {R"(<kvor:felt name="s" type="surfaceshader"/>)", {R"(s: node-undefined: no definition of "kvor:felt")"}},
        {R"(<kvor:bitmap name="b" type="matrix33"/>)",
         {R"(b: node-undefined: no definition of "kvor:bitmap" is of type "matrix33"; there are color3, color4, float, vector3)"}},
        {R"(<constant name="c" type="float" nodedef="ND_gone"/><constnt name="d" type="float" nodedef="ND_gone"/>)",
         {R"(c: node-undefined: )", R"(d: node-undefined: no definition of "constnt")"}},
        {R"(<kvor:metal name="m" type="surfaceshader"><input name="shine" type="float" value="1"/></kvor:metal>)",
         {"m: materialx-rule: Node interface error: "}},
        {constant(R"(value="1" colorspace="sRGB")"),
         {R"(g/n/value: color-space-unknown: unknown colour space "sRGB"; known are none, lin_rec709, )"}},
        {constant(R"(value="1" colorspace="none" unit="inch" unittype="distance")"), {}},
        {constant(R"(value="1" unit="furlong" unittype="distance")"),
         {R"(g/n/value: unit-unknown: no unit "furlong" of type "distance"; there are nanometer, micron, )"}},
        {constant(R"(value="1" unit="inch")"), {R"(g/n/value: unit-unknown: the unit "inch" has no unit type)"}},
        {constant(R"(value="1" unit="lumen" unittype="flux")"), {R"(g/n/value: unit-type-unknown: unknown unit type "flux")"}},
        {constant(R"(value="1" unittype="distance")"),
         {R"(g/n/value: unit-missing: the value has the unit type "distance" but no unit)"}},
        {R"(<kvor:metal name="m" type="surfaceshader"><input name="surface_rotation" type="float" value="1" unit="meter" unittype="distance"/></kvor:metal>)",
         {R"(m/surface_rotation: unit-misfit: the unit is of the kind "distance", but the input takes a "angle")"}},
        {constant(R"(value="1" unit="" unittype="distance")"), {R"(g/n/value: unit-unknown: no unit "")"}},
        {constant(""), {"g/n/value: input-unbound: "}},
        {constant(R"(value="much")"), {R"(g/n/value: value-invalid: "much" is no value of type "float")"}},
        {constant(R"(nodename="gone")"), {"g/n/value: materialx-rule: Invalid port connection"}},
        {R"(<nodegraph name="g"/>)", {"g: graph-empty: the node graph is empty"}},
        {R"(<nodegraph name="g"><constant name="n" type="float"/></nodegraph>)", {"g: graph-empty: the node graph has no output"}},
        {graph(""), {"g: graph-empty: the node graph has no nodes", "g/o: materialx-rule: Invalid port connection"}},
        {image("gone.png"), {R"(i/file: file-missing: there is no file "gone.png")"}},
        {image("t.&lt;UDIM&gt;.png"), {}},
        {image(""), {}},
        {R"(<image name="i" type="color3"><input name="uaddressmode" type="string" value="wrap"/><input name="vaddressmode" type="string" value="clamp"/>)"
         R"(<input name="filtertype" type="string" value=""/></image>)",
         {R"(i/uaddressmode: choice-unknown: "wrap" is none of the choices: constant,clamp,periodic,mirror)"}},
        {R"(<kvor:bitmap name="b" type="float"><input name="uaddressmode" type="string" value="wrap"/></kvor:bitmap>)",
         {R"(b/uaddressmode: choice-unknown: )"}},
        {R"(<nodedef name="ND_x" node="x"><input name="a" type="string" value="first choice" enum="first choice, second"/><input name="b" type="string" value="" enum=""/>)"
         R"(<output name="out" type="float"/></nodedef><x name="n" type="float"><input name="a" type="string" value="first choice"/><input name="b" type="string" value="any"/></x>)"
         R"(<x name="m" type="float"><input name="a" type="string" value="first"/></x>)", {R"(m/a: choice-unknown: )"}},
        // What a definition lists for others than texts are proposals.
        {R"(<luminance name="l" type="color3"><input name="lumacoeffs" type="color3" value="0.3, 0.6, 0.1"/></luminance>)", {}},
        {R"(<nodegraph name="g"><surface_unlit name="s" type="surfaceshader"/><surfacematerial name="m" type="material"><input name="surfaceshader" type="surfaceshader" nodename="s"/>)"
         R"(</surfacematerial><output name="o" type="material" nodename="m"/></nodegraph><look name="l"><materialassign name="a" material="g" geom="*"/></look>)", {}},
        {R"(<look name="l"><materialassign name="a" material="m"/><materialassign name="b" material="gone"/><materialassign name="c" material="s"/>)"
         R"(<materialassign name="d"/></look><standard_surface name="s" type="surfaceshader"/>)"
         R"(<surfacematerial name="m" type="material"><input name="surfaceshader" type="surfaceshader" nodename="s"/></surfacematerial>)",
         {R"(l/b: material-missing: there is no material "gone")", R"(l/c: material-missing: )", R"(l/d: material-missing: )"}},
        {R"(<nodedef name="ND_x" node="x"><input name="a" type="float" value="0,5"/><output name="out" type="float"/></nodedef>)", {R"(ND_x/a: value-invalid: )"}},
        // A definition's defaults have no unit: its users choose.
        {R"(<nodedef name="ND_x" node="x"><input name="a" type="float" value="1" unittype="distance"/><output name="out" type="float"/></nodedef>)", {}},
        // Two elements alike but for their place, one of them in order.
        {graph(R"(<add name="n" type="float"><input name="in1" type="float"/></add>)") +
             R"(<add name="n" type="float"><input name="in1" type="float" value="2"/></add>)", {"g/n/in1: input-unbound: "}},
    };
    // clang-format on
    for (const auto& [content, messages] : cases)
        expectMessages(validateDocument(documentOf(content)), messages, content);
}

TEST(Validation, ReadsValuesToTheirEnd)
{
    // By type: values, then what is none though it begins like one.
    const std::tuple<std::string, Lines, Lines> cases[] = {
        {"float", {"1", " -1.5e-3 ", "+.5", "2."}, {"0,5", "1 2", "1,", "1f", "0x10", "50%"}},
        {"integer", {"7", "-7", "+7"}, {"1.5", "1e3", "1 2"}},
        {"boolean", {"true"}, {"True", "1"}},
        {"color3", {"1,1,1", "1, 1, 1", "1 1 1"}, {"1, 1, 1;", "1, 1x, 1", "1, 1, 1, 1"}},
        {"vector2", {"1,1", "1, 1", " 1  1 "}, {"0.5;, 1", "1, 1mm"}},
        {"matrix33", {"1,0,0, 0,1,0, 0,0,1"}, {"1,0,0, 0,1,0, 0,0,1m"}},
        {"floatarray", {"", "1, 2"}, {"1;2", "1, 2x"}},
        {"color3array", {"", "1,0,0, 0,1,0"}, {"1,0,0, 0", "red"}},
        {"stringarray", {"", "1,a"}, {}},
        {"string", {"", "0,5"}, {}},
    };
    for (const auto& [type, good, bad] : cases)
        for (const Lines* values : {&good, &bad})
            for (const std::string& value : *values)
            {
                const std::string content =
                    "<token name=\"a\" type=\"" + type + "\" value=\"" + value + "\"/>";
                const std::string message = "a: value-invalid: \"" + value + "\" ";
                expectMessages(validateDocument(documentOf(content)),
                               values == &good ? Lines{} : Lines{message}, content);
            }
}

TEST(Validation, LooksFilesUpAsMaterialXDoes)
{
    const support::TemporaryFolder folder, other;
    const std::string absolute = folder.write("images/here.png", "").generic_string();
    other.write("there.png", "");
    const std::string prefix = R"(fileprefix="images/")";
    const std::pair<std::string, bool> cases[] = {
        {image("images/here.png"), true},
        {image("here.png", prefix), true},
        {image(absolute, prefix), true},
        {R"(<token name="kind" type="string" value="here"/>)" + image("images/[kind].png"), true},
        {image("there.png"), true},
        {image("here.png"), false},
        {image("images"), false},
    };
    for (const auto& [content, found] : cases)
        expectMessages(
            validateFile(folder.write("document.mtlx", textOf(content)), {{other.path()}, {}}),
            found ? Lines{} : Lines{"i/file: file-missing: "}, content);
}

TEST(Validation, ReadsFilesOrSaysWhereTheyBreak)
{
    const support::TemporaryFolder folder;
    // clang-format off
    const std::pair<std::string, std::string> cases[] = {
        {"<?xml version=\"1.0\"?>\n<materialx version=\"1.39\">\n  <constant name=\"a\" <\n</materialx>", "line 3, column 22: "},
        {"<?xml version=\"1.0\"?>\n<materialx version=\"1.39\">", "line 2, column "},
        {"", "line 1, column 1: "},
        {std::string("<materialx version=\"1.39\">\n\0</materialx>", 40), "line 2, column 1: a zero byte"},
        {"<?xml version=\"1.0\"?><scene/>", "No root MaterialX element"},
        {textOf("<xi:include href=\"gone.mtlx\"/>"), "Failed to open file"},
    };
    // clang-format on
    for (const auto& [text, beginning] : cases)
        expectMessages(validateFile(folder.write("bad.mtlx", text)), {": unreadable: " + beginning},
                       text);
    expectMessages(validateFile(folder / "none.mtlx"), {": unreadable: there is no such file"}, "");
    expectMessages(validateFile(folder.path()), {": unreadable: it is a folder"}, "");
    const std::string older = R"(<?xml version="1.0"?><materialx version="1.38">
        <invert name="i" type="float"><input name="in" type="float" value="1"/></invert></materialx>)";
    expectMessages(validateFile(folder.write("older.mtlx", older)), {}, older);
}

TEST(Validation, LeavesTheDocumentAlone)
{
    for (const mx::ConstDocumentPtr& library :
         {mx::ConstDocumentPtr(), mx::ConstDocumentPtr(mx::createDocument())})
        for (const auto& [node, document] : samples())
        {
            document->setDataLibrary(library);
            const std::string before = mx::writeToXmlString(document);
            expectMessages(validateDocument(document), {}, node);
            EXPECT_EQ(mx::writeToXmlString(document), before);
            EXPECT_EQ(document->getDataLibrary(), library);
        }
}

} // namespace
} // namespace vyr::tests
