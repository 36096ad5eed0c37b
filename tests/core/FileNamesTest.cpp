#include "core/FileNames.h"

#include <string>

#include <gtest/gtest.h>

#include "core/Text.h"

namespace vyr::MaterialTranslation::core
{

namespace
{

TEST(FileNames, AreTheLastComponentOfAPathOfAnySystem)
{
    const struct
    {
        const char* path;
        const char* name;
    } cases[] = {
        {"wood.png", "wood.png"},
        {"/a/b/wood.png", "wood.png"},
        {"C:\\a\\wood.png", "wood.png"},
        {"a\\b/c", "c"},
        {"a/b\\c", "c"},
        {"a/", ""},
        {"a\\", ""},
        {"", ""},
        {"a/..", ".."},
    };
    for (const auto& [path, name] : cases)
        EXPECT_EQ(lastComponent(path), name) << path;
}

TEST(FileNames, ThatReachElsewhereAreTreacherous)
{
    for (const std::string& name :
         {std::string(), std::string("."), std::string(".."), std::string("a\0.png", 6),
          std::string("C:"), std::string("c:wood.png"), std::string("1:"), std::string("NUL"),
          std::string("con.png"), std::string("Lpt1.tar.gz"), std::string("aux .png")})
        EXPECT_TRUE(isTreacherous(name)) << ::testing::PrintToString(name);
    for (const char* name :
         {"...", "..png", ".png", "a.", "wood:1", "con-1.png", "~", "-rf", "%2e%2e"})
        EXPECT_FALSE(isTreacherous(name)) << name;
}

TEST(FileNames, BecomePortable)
{
    const struct
    {
        std::string name;
        std::string expected;
    } cases[] = {
        {"wood.png", "wood.png"},
        {"100% oak & \xC3\xA9 'x' #1 [a]{b}.png", "100% oak & \xC3\xA9 'x' #1 [a]{b}.png"},
        {"a<b>c:d\"e|f?g*h.png", "a_b_c_d_e_f_g_h.png"},
        {"a\x01\x1F\x7Fz", "a___z"},
        {"wood.", "wood"},
        {"wood.png ", "wood.png"},
        {"a..", "a"},
        {"...", "_"},
        {std::string(300, 'x') + ".png", std::string(196, 'x') + ".png"},
        {"." + std::string(300, 'x'), "." + std::string(199, 'x')},
        {std::string(199, 'x') + ". y", std::string(197, 'x') + ". y"},
    };
    for (const auto& [name, expected] : cases)
        EXPECT_EQ(portableName(name), expected) << name;
}

/// Wherever a long name is cut, characters stay whole, and a document can hold it.
TEST(FileNames, AreCutBetweenCharacters)
{
    for (const std::string character : {"\xC3\xA9", "\xE6\x9C\xA8", "\xF0\x9F\xAA\xB5"})
        for (std::size_t before = 0; before < 5; ++before)
            for (const std::string& name :
                 {std::string(before, 'a') + std::string(), std::string(before + 1, 'a') + "."})
            {
                std::string text = name;
                for (int i = 0; i < 150; ++i)
                    text += character;
                for (const std::string& whole : {text, text + ".png"})
                {
                    const std::string portable = portableName(whole);
                    EXPECT_LE(portable.size(), 200u);
                    EXPECT_GE(portable.size(), 190u / 2) << portable;
                    EXPECT_EQ(core::xmlText(portable), portable);
                }
            }
}

TEST(FileNames, AreGivenOutOnce)
{
    FileNames names;
    const struct
    {
        const char* wanted;
        const char* given;
    } cases[] = {
        {"a.png", "a.png"},
        {"a.png", "a-2.png"},
        {"A.PNG", "A-3.PNG"},
        {"a-2.png", "a-2-2.png"},
        {"a", "a"},
        {"a", "a-2"},
        {".a", ".a"},
        {".a", ".a-2"},
        {"a.tar.gz", "a.tar.gz"},
        {"a.tar.gz", "a.tar-2.gz"},
        {"a.jpg", "a.jpg"},
        // Letters of other scripts have cases too.
        {"\xC3\x84.png", "\xC3\x84.png"},
        {"\xC3\xA4.png", "\xC3\xA4-2.png"},
        {"\xC3\xB6.png", "\xC3\xB6.png"},
        {"\xD0\xA9.png", "\xD0\xA9.png"},
        {"\xD1\x89.png", "\xD1\x89-2.png"},
    };
    for (const auto& [wanted, given] : cases)
        EXPECT_EQ(names.take(wanted), given);
}

} // namespace

} // namespace vyr::MaterialTranslation::core
