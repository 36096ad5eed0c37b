#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "graph/Names.h"
#include "graph/Nodes.h"
#include "support/Documents.h"

namespace vyr::MaterialTranslation::graph
{

namespace
{

namespace mx = MaterialX;

TEST(Names, AreIdentifiersOfAsciiLettersDigitsAndUnderscores)
{
    for (const char* name : {"a", "Z9", "_", "_1", "Oak_12_shader"})
        EXPECT_TRUE(isIdentifier(name)) << name;
    for (const char* name :
         {"", "1", "9a", "a b", "a-b", "a.b", "a:b", "a/b", "\xC3\xA4", "a\n", "a\x7F", " a"})
        EXPECT_FALSE(isIdentifier(name)) << name;
    EXPECT_FALSE(isIdentifier(std::string_view("a\0b", 3)));
}

struct TakenCase
{
    /// What the document has: "look" adds the look "default", any other is a node's name.
    std::vector<std::string> present;
    std::vector<std::string> wanted;
    bool addLook;
    const char* taken;
};

const TakenCase takenCases[] = {
    {{}, {"a", "b"}, false, ""},          {{"b"}, {"a", "b"}, false, "b"},
    {{"b", "a"}, {"a", "b"}, false, "a"}, {{"A"}, {"a"}, false, ""},
    {{}, {"default"}, false, ""},         {{}, {"default"}, true, "default"},
    {{"look"}, {"a"}, true, ""},          {{"look"}, {"default"}, false, "default"},
    {{"default"}, {"a"}, false, ""},      {{"default"}, {"a"}, true, "default"},
};

TEST(Names, AreTakenByAnyElementAndByTheLookToCome)
{
    for (const TakenCase& one : takenCases)
    {
        const mx::DocumentPtr document = mx::createDocument();
        for (const std::string& name : one.present)
            if (name == "look")
                document->addLook(defaultLookName);
            else
                addNode(document, "constant", name, "float");
        EXPECT_EQ(takenName(document, one.wanted, one.addLook), one.taken)
            << ::testing::PrintToString(one.present) << ::testing::PrintToString(one.wanted)
            << one.addLook;
    }
}

TEST(Names, ThatAreFreeCountUpFromTwo)
{
    const mx::DocumentPtr document = mx::createDocument();
    const auto take = [&]
    {
        const std::string name = freeName(document, "graph");
        document->addNodeGraph(name);
        return name;
    };
    EXPECT_EQ(take(), "graph");
    EXPECT_EQ(take(), "graph2");
    document->addNodeGraph("graph4");
    EXPECT_EQ(take(), "graph3");
    EXPECT_EQ(take(), "graph5");

    // A number that no integer holds is part of the name.
    const std::string large = "graph99999999999999999999";
    document->addNodeGraph(large);
    EXPECT_EQ(freeName(document, large), large + "2");
}

/// The assignments of a look, "name material".
std::vector<std::string> assignments(const mx::DocumentPtr& document)
{
    std::vector<std::string> lines;
    for (const mx::MaterialAssignPtr& one : document->getLook("default")->getMaterialAssigns())
        lines.push_back(one->getName() + " " + one->getMaterial() + " " + one->getGeom());
    return lines;
}

TEST(Names, OfAssignmentsStayApartInOneLook)
{
    const mx::DocumentPtr document = mx::createDocument();
    // The third material's assignment would get the name of the first.
    for (const char* material : {"Oak", "Ash", "default"})
        assignInDefaultLook(document, material);
    EXPECT_EQ(
        assignments(document),
        (std::vector<std::string>{"material_assign_default Oak *", "material_assign_Ash Ash *",
                                  "material_assign_default2 default *"}));
    EXPECT_EQ(document->getLooks().size(), 1u);
}

} // namespace

} // namespace vyr::MaterialTranslation::graph
