#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "graph/Names.h"
#include "graph/Nodes.h"

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

TEST(Names, AreTakenByAnyElementAndByTheLookToCome)
{
    const struct
    {
        /// The node that the document has; "look" stands for its default look.
        std::string present;
        std::vector<std::string> wanted;
        bool addLook;
        const char* taken;
    } cases[] = {
        {"A", {"a"}, false, ""},       {"b", {"a", "b"}, false, "b"},
        {"x", {"default"}, false, ""}, {"x", {"default"}, true, "default"},
        {"look", {"a"}, true, ""},     {"look", {"default"}, false, "default"},
        {"default", {"a"}, false, ""}, {"default", {"a"}, true, "default"},
    };
    for (const auto& [present, wanted, addLook, taken] : cases)
    {
        const mx::DocumentPtr document = mx::createDocument();
        if (present == "look")
            document->addLook(defaultLookName);
        else
            addNode(document, "constant", present, "float");
        EXPECT_EQ(takenName(document, wanted, addLook), taken) << present << addLook;
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

} // namespace

} // namespace vyr::MaterialTranslation::graph
