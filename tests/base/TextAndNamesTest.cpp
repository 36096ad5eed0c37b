#include <algorithm>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::base
{

namespace
{

using namespace std::string_literals;

TEST(Names, AreTheLastComponentOfAPathOfAnySystem)
{
    for (const auto& [path, name] :
         {std::pair("C:\\a/b\\w.png", "w.png"), {"a\\b/c", "c"}, {"a/", ""}, {"a\\", ""}, {"", ""}})
        EXPECT_EQ(lastComponent(path), name) << path;
}

TEST(Names, ThatReachElsewhereOrNameADeviceAreUnsafe)
{
    for (const std::string& name :
         {""s, "."s, ".."s, "a\0.png"s, "C:"s, "c:wood.png"s, "1:"s, "NUL"s, "Prn.png"s,
          "Lpt1.tar.gz"s, "aux .png"s, "com0"s, "conin$"s, "CONOUT$.txt"s})
    {
        EXPECT_TRUE(isUnsafeName(name)) << ::testing::PrintToString(name);
        EXPECT_FALSE(isUnsafeName(safeName(name))) << ::testing::PrintToString(name);
    }
    for (const char* name :
         {"...", "..png", ".png", "a.", "wood:1", "con-1.png", "~", "%2e%2e", "c", "console", "com",
          "com10", "xcom1", "comA", ".con", "wood.con", "auxiliary.png"})
    {
        EXPECT_FALSE(isUnsafeName(name)) << name;
        EXPECT_FALSE(isDeviceName(name)) << name;
    }
}

TEST(Names, BecomePortable)
{
    const std::pair<std::string, std::string> cases[] = {
        {"a<b>c:d\"e|f?g*h\x01\x1F\x7F.png", "a_b_c_d_e_f_g_h___.png"},
        {"...", "_"},
        {std::string(300, 'x') + ".png", std::string(196, 'x') + ".png"},
        {"." + std::string(300, 'x'), "." + std::string(199, 'x')},
        {std::string(199, 'x') + ". y", std::string(197, 'x') + ". y"},
    };
    for (const auto& [name, expected] : cases)
        EXPECT_EQ(portableName(name), expected) << name;
    // Wherever a long name is cut, characters stay whole.
    for (const std::string character : {"\xC3\xA9", "\xE6\x9C\xA8", "\xF0\x9F\xAA\xB5"})
        for (std::string text(1, 'a'); text.size() < 220; text += character)
            for (const std::string& whole : {text, "b" + text + ".png", "cc" + text})
            {
                const std::string portable = portableName(whole);
                EXPECT_LE(portable.size(), 200u);
                EXPECT_GE(portable.size() + 4, std::min<std::size_t>(whole.size(), 200));
                EXPECT_EQ(xmlText(portable), portable);
            }
}

TEST(Names, AreGivenOutOnce)
{
    UniqueNames names;
    const char* wanted[] = {"a.png",     "a.png",    "A.PNG",    "a-2.png", "a",        "a",
                            ".a",        ".a",       "a.b.gz",   "a.b.gz",  "\xC3\x84", "\xC3\xA4",
                            "A\xCC\x88", "\xD0\xA9", "\xD1\x89", "busy"};
    const char* given[] = {"a.png",       "a-2.png",  "A-3.PNG",    "a-2-2.png",
                           "a",           "a-2",      ".a",         ".a-2",
                           "a.b.gz",      "a.b-2.gz", "\xC3\x84",   "\xC3\xA4-2",
                           "A\xCC\x88-3", "\xD0\xA9", "\xD1\x89-2", "busy-3"};
    const auto isFree = [](const std::string& name) { return name != "busy" && name != "busy-2"; };
    for (std::size_t i = 0; i < std::size(wanted); ++i)
        EXPECT_EQ(names.take(wanted[i], isFree), given[i]);
}

TEST(Text, FoldsCaseAndForm)
{
    for (const auto& [a, b] : {std::pair("WOOD.png", "wood.PNG"),
                               {"\xC3\x89t\xC3\xA9", "e\xCC\x81T\xC3\x89"}, // composed, decomposed
                               {"\xC4\xB0", "i\xCC\x87"}, // a capital I with its dot
                               {"\xCE\xA3", "\xCF\x82"},  // the sigma at the end of words
                               {"\xC3\x9F", "SS"}})
        EXPECT_EQ(foldCase(a), foldCase(b)) << a << " " << b;
    EXPECT_NE(foldCase("\xC3\xA9"), foldCase("e"));
    EXPECT_EQ(foldCase("A\xFF"), "a\xFF") << "no UTF-8";
    EXPECT_TRUE(equalsIgnoringCase("UTF-8", "utf-8"));
    EXPECT_FALSE(equalsIgnoringCase("a[", "A{"));
    EXPECT_FALSE(equalsIgnoringCase("a", "ab"));
}

TEST(Text, KeepsWhatXmlCanHoldAndNothingElse)
{
    // Every byte of a broken sequence becomes one U+FFFD, written "?" here.
    const std::pair<std::string, std::string> cases[] = {
        {"a\tb\nc\rd", "a b c d"},
        {"a\0b\x01\x1F\x7F"s, "a?b???"},
        {"\xEF\xBF\xBE|\xEF\xBF\xBF|\xED\xA0\x80", "?|?|???"},     // no characters; a surrogate
        {"\xC0\xAF|\xE0\x80\xAF|\xF0\x82\x82\xAC", "??|???|????"}, // longer than need be
        {"\xF4\x90\x80\x80|\xF8\x88\x80\x80", "????|????"},        // beyond U+10FFFF
        {"\x80x\xC3(\xE6\x9C", "?x?(??"}, // a continuation alone, sequences cut short
    };
    for (auto [text, expected] : cases)
    {
        for (std::size_t at; (at = expected.find('?')) != std::string::npos;)
            expected.replace(at, 1, "\xEF\xBF\xBD");
        EXPECT_EQ(xmlText(text), expected) << ::testing::PrintToString(text);
    }
    const char* text = "plain <&>\"' \xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80"
                       "\xEF\xBF\xBD\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(xmlText(text), text);
    EXPECT_EQ(validUtf8("a\n\xFFz"), "a\n\xEF\xBF\xBDz");
}

TEST(Text, IsQuotedOnOneLine)
{
    EXPECT_EQ(printable("a\nb\x1B[0m\t\x7F"), "a\\nb\\x1b[0m\\x09\\x7f");
    EXPECT_EQ(printable("\u00e9\u0085\u2028\u202e\x9B"), "\u00e9\\u0085\\u2028\\u202e\\x9b");
    EXPECT_EQ(inQuotes("oak"), "\"oak\"");
    EXPECT_EQ(inQuotes(std::string(500, 'x')), '"' + std::string(80, 'x') + "...\"");
}

TEST(Text, IsANumberAsAWholeOrNot)
{
    EXPECT_EQ(numberFromText<float>("1.5"), 1.5f);
    EXPECT_EQ(numberFromText<double>("+1e-3"), 1e-3);
    EXPECT_EQ(numberFromText<int>("-7"), -7);
    for (const char* text :
         {"", " 1", "1 ", "1,5", "0x10", "nan", "inf", "1e999", "+-1", "++1", "1.5.2"})
        EXPECT_FALSE(numberFromText<double>(text)) << text;
    EXPECT_FALSE(numberFromText<float>("1e39"));
    EXPECT_FALSE(numberFromText<unsigned>("-1"));
    EXPECT_FALSE(numberFromText<int>("2147483648"));
    EXPECT_FALSE(numberFromText<int>("1.0"));
}

} // namespace

} // namespace vyr::base
