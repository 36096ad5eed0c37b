#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <thread>
#include <tuple>

#include <MaterialXFormat/XmlIo.h>
#include <gtest/gtest.h>

#include <MaterialTranslation/NodeForms.h>
#include <MaterialTranslation/Schemas.h>

#include "assets/Lyrex.h"
#include "materials/Translators.h"
#include "support/TemporaryFolder.h"

namespace vyr::tests
{
namespace
{

namespace mx = MaterialX;
using namespace MaterialTranslation;

const std::filesystem::path cases = VYR_SOURCE_DIR "/tests/definitions/cases";
const ValidationOptions alone{{cases}, DefinitionSet::Standard};

mx::DocumentPtr readCase(const std::string& name)
{
    const mx::DocumentPtr document = mx::createDocument();
    mx::readFromXmlFile(document, (cases / name).string());
    return document;
}

/// A line "  path: code: text" for each message.
std::string lines(const std::vector<ValidationMessage>& messages)
{
    std::string result;
    for (const auto& [path, code, text] : messages)
        result += "  " + path + ": " + validationCodeName(code) + ": " + text + "\n";
    return result;
}

/// Expects a text to be that of a file in "cases". With VYR_ACCEPT in the environment the file is written.
void expectAccepted(const std::string& name, const std::string& text)
{
    if (std::getenv("VYR_ACCEPT"))
        std::ofstream(cases / name, std::ios::binary) << text;
    std::ifstream stream(cases / name, std::ios::binary);
    EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(stream), {})) << name;
}

struct DataLibrary : ::testing::Test
{
    ~DataLibrary() override { setDefinitionFolders({}); }
    support::TemporaryFolder _folder;
};

TEST_F(DataLibrary, IsReadOnceFromTheFoldersGiven)
{
    const auto first = definitionLibrary();
    EXPECT_EQ(definitionLibrary(), first);
    EXPECT_TRUE(first->getNodeDef("kvor:ND_metal_surfaceshader"));
    const auto standard = definitionLibrary(DefinitionSet::Standard);
    EXPECT_FALSE(standard->getNodeDef("kvor:ND_metal_surfaceshader"));
    EXPECT_TRUE(standard->getNodeDef("ND_standard_surface_surfaceshader"));

    const DefinitionFolders found = definitionFolders();
    std::filesystem::copy(found.kvor, _folder.path());
    _folder.write("more.mtlx", R"(<materialx version="1.39"><typedef name="felt"/></materialx>)");
    setDefinitionFolders({found.standard, _folder.path()});
    EXPECT_TRUE(definitionLibrary()->getTypeDef("felt"));
    EXPECT_EQ(definitionFolders().kvor, _folder.path());
}

/// Why the definitions cannot be read from folders.
std::string failure(const DefinitionFolders& folders)
try
{
    setDefinitionFolders(folders);
    definitionLibrary();
    return "";
}
catch (const std::runtime_error& error)
{
    return error.what();
}

TEST_F(DataLibrary, SaysWhatIsMissingOrBroken)
{
    const std::string file = _folder.write("kvor_textures_defs.mtlx", "<materialx").string();
    const std::string missing = "no node definitions in " + _folder.text();
    EXPECT_EQ(failure({_folder.path(), {}}).substr(0, missing.size()), missing);
    EXPECT_NE(failure({{}, _folder / "none"}).find("kvor_textures_defs.mtlx"), missing.npos);
    EXPECT_NE(failure({{}, _folder.path()}).find(file), missing.npos);
    // What failed once is tried again.
    EXPECT_EQ(failure({}), "");
}

TEST_F(DataLibrary, ServesSeveralThreads)
{
    std::vector<std::thread> threads;
    std::vector<std::string> problems(4);
    for (std::string& text : problems)
        threads.emplace_back(
            [&text]
            {
                for (int i = 0; i < 20; ++i)
                    text += lines(applyNodeForm(readCase("sample.mtlx"), NodeForm::Standard)) +
                            lines(validateDocument(readCase("sample.mtlx")));
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(problems, std::vector<std::string>(4));
}

TEST(Registry, HasTheShadingNodesOfTheDefinitionsWithTheirInputs)
{
    std::vector<std::string> registered, defined;
    for (const auto& family : assets::lyrexFamilies())
        for (const auto* property : family.properties)
            registered.push_back(std::string(family.category) + " " + property->name + " " +
                                 assets::typeName(property->type) + " " + property->unitType);
    for (const mx::NodeDefPtr& definition : definitionLibrary()->getNodeDefs())
        if (definition->getNamespace() == "kvor" && definition->getType() == "surfaceshader")
            for (const mx::InputPtr& input : definition->getInputs())
                defined.push_back("kvor:" + definition->getNodeString() + " " + input->getName() +
                                  " " + input->getType() + " " + input->getUnitType());
    EXPECT_EQ(registered, defined);
}

/// A row that no golden case, page or sample speaks of is a promise that nobody checks or knows of.
TEST(Registry, HasEveryRowInCasesDocumentsAndSamples)
{
    const std::string root = VYR_SOURCE_DIR "/";
    const auto namesOf = [](const SchemaRow& schema)
    {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < schema.propertyCount; ++i)
            names.emplace_back(schema.properties[i].name);
        return names;
    };
    const std::vector<std::string> generic = namesOf(genericMaterials().front());
    const std::vector<std::string> textures = textures::textureSchemas();
    std::vector<std::string> schemas, rows = namesOf(texturePlacement()), shown;
    for (const SchemaGroup& group : schemaGroups())
        for (const SchemaRow& schema : *group.schemas)
        {
            schemas.emplace_back(schema.name);
            if (group.schemas == &legacyMaterials())
                continue; // a test of their own tries all of their rows
            rows.emplace_back(schema.name);
            for (std::string& name : namesOf(schema))
            {
                if (const auto number = name.find('#'); number != name.npos)
                    name[number] = '1';
                if (!group.areTextures)
                    shown.push_back(name);
                rows.push_back(std::move(name));
            }
        }
    shown.insert(shown.end(), schemas.begin(), schemas.end());

    const auto expectIn = [&](const char* where, char quote, const std::vector<std::string>& names)
    {
        std::string text;
        if (std::filesystem::is_regular_file(root + where))
            text = support::readFile(root + where);
        else
            for (const auto& entry : std::filesystem::recursive_directory_iterator(root + where))
                if (entry.path().extension() == ".json")
                    text += support::readFile(entry.path());
        for (const std::string& name : names)
            EXPECT_NE(text.find(quote + name + quote), text.npos) << name << " is not in " << where;
    };
    expectIn("tests/cases", '"', rows);
    expectIn("samples", '"', shown);
    for (const std::string& schema : textures)
        EXPECT_TRUE(findSchema(schema)) << schema << " is not in the registry";
    expectIn("docs/textures.md", '`', generic);
    expectIn("docs/textures.md", '`', textures);
    for (const SchemaRow& pattern : proceduralTextures())
    {
        expectIn("docs/bakes.md", '`', {pattern.name});
        std::string kind(pattern.name, std::string_view(pattern.name).find("Schema"));
        kind[0] = static_cast<char>(std::tolower(kind[0]));
        EXPECT_NE(support::readFile(root + "docs/bakes.md").find("\n| " + kind + " | "), kind.npos)
            << "docs/bakes.md has no formula of " << kind;
        EXPECT_NE(support::readFile(root + "scripts/bakes-picture").find('\n' + kind), kind.npos)
            << "scripts/bakes-picture does not draw " << kind;
    }

    const std::string used =
        support::readFile(root + "tests/cases/generic/expected/verbose/messages");
    for (const std::string& row : generic)
        EXPECT_TRUE(used.find('\n' + row + ": ") != used.npos ||
                    used.find('\n' + row + " has ") != used.npos)
            << row << " is read by no rule";
}

/// What is wrong in the documents of the folder "cases" is what "messages.txt" has.
TEST(Validation, TellsWhatIsWrongAndWhere)
{
    std::map<std::string, std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(cases))
        if (entry.path().extension() == ".mtlx")
            found[entry.path().filename().string()] =
                lines(validateFile(entry.path(), {{cases / "elsewhere"}, {}}));
    found["a folder"] = lines(validateFile(cases));
    found["none"] = lines(validateFile(cases / "none.mtlx"));
    const mx::DocumentPtr chain = mx::createDocument();
    for (int i = 0; i < 3000; ++i)
    {
        const mx::NodeGraphPtr graph = chain->addNodeGraph("g" + std::to_string(i));
        graph->addInput("i", "float")->setNodeGraphString("g" + std::to_string(i - 1));
        const mx::NodePtr node = graph->addNode("constant", "c", "float");
        node->addInput("value", "float")->setInterfaceName("i");
        graph->addOutput("o", "float")->setNodeName("c");
    }
    found["3,000 graphs"] = lines(validateDocument(chain));
    std::string text;
    for (const auto& [file, messages] : found)
        text += file + "\n" + messages;
    expectAccepted("messages.txt", text);
}

TEST(Validation, LeavesTheDocumentAlone)
{
    for (const mx::DocumentPtr& library : {mx::DocumentPtr(), mx::createDocument()})
    {
        const mx::DocumentPtr document = readCase("nodes.mtlx");
        document->setDataLibrary(library);
        const std::string before = mx::writeToXmlString(document);
        EXPECT_NE(lines(validateDocument(document)), "");
        EXPECT_EQ(mx::writeToXmlString(document), before);
        EXPECT_EQ(document->getDataLibrary(), library);
    }
}

std::string inForm(const std::string& text, NodeForm form)
{
    const mx::DocumentPtr document = mx::createDocument();
    mx::readFromXmlString(document, text);
    EXPECT_EQ(lines(applyNodeForm(document, form)), "");
    return mx::writeToXmlString(document);
}

TEST(NodeForms, StandAloneAndAreTheSameEveryTime)
{
    const mx::DocumentPtr sample = readCase("sample.mtlx");
    const std::string reference = mx::writeToXmlString(sample);
    const std::string embedded = inForm(reference, NodeForm::Embed);
    const std::string standard = inForm(reference, NodeForm::Standard);
    EXPECT_EQ(inForm(reference, NodeForm::Reference), reference);
    EXPECT_EQ(inForm(embedded, NodeForm::Embed), embedded);
    EXPECT_EQ(inForm(embedded, NodeForm::Standard), standard);
    EXPECT_EQ(inForm(embedded, NodeForm::Reference).find("<nodedef"), embedded.npos);
    EXPECT_EQ((standard + embedded).find("xi:include"), embedded.npos);
    EXPECT_EQ(standard.find("kvor:"), standard.npos);
    EXPECT_EQ(embedded.find("\"kvor:ND_opaque_surfaceshader\""), embedded.npos);
    for (const std::string& text : {embedded, standard})
    {
        const mx::DocumentPtr document = mx::createDocument();
        mx::readFromXmlString(document, text);
        EXPECT_EQ(lines(validateDocument(document, alone)), "");
        for (const mx::ElementPtr& element : sample->traverseTree())
            EXPECT_TRUE(element->isA<mx::Input>() ||
                        document->getDescendant(element->getNamePath()))
                << element->getNamePath();
        for (const mx::NodePtr& image : document->getNodeGraph("NG_sample")->getNodes("image"))
            EXPECT_EQ(image->getInput("file")->hasColorSpace(), image->isColorType());
    }
}

/// Units are converted, names that meet are kept apart, and what is not known is left.
TEST(NodeForms, AreWhatIsExpected)
{
    const std::tuple<const char*, NodeForm, const char*> forms[] = {
        {"conversions.mtlx", NodeForm::Embed, "conversions-embed.xml"},
        {"conversions.mtlx", NodeForm::Standard, "conversions-standard.xml"},
        {"names.mtlx", NodeForm::Standard, "names-standard.xml"},
        {"endless.mtlx", NodeForm::Embed, "endless-embed.xml"},
        {"endless.mtlx", NodeForm::Standard, "endless-standard.xml"},
    };
    for (const auto& [source, form, expected] : forms)
    {
        const mx::DocumentPtr document = readCase(source);
        const std::string messages = lines(applyNodeForm(document, form));
        expectAccepted(expected, mx::writeToXmlString(document) + "<!--\n" + messages + "-->\n");
    }
}

} // namespace
} // namespace vyr::tests
