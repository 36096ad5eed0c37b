#include "core/Text.h"
#include "core/OutputFolder.h"

#include <string>

#include <gtest/gtest.h>

namespace vyr::MaterialTranslation::core
{

namespace
{

constexpr const char* lost = "\xEF\xBF\xBD";

/// Every byte becomes one U+FFFD, as a sequence that is broken has no length.
std::string losses(std::size_t count)
{
    std::string text;
    while (count-- > 0)
        text += lost;
    return text;
}

TEST(XmlText, KeepsWhatXmlCanHold)
{
    for (const char* text :
         {"", "plain <&>\"'",
          "Gr\xC3\xB6\xC3\x9F"
          "e",
          "\xE6\x9C\xA8", "\xF0\x9F\xAA\xB5", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80",
          "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBD", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
        EXPECT_EQ(xmlText(text), text);
}

TEST(XmlText, ReplacesWhatItCannot)
{
    const struct
    {
        std::string text;
        std::string expected;
    } cases[] = {
        {"a\tb\nc\rd", "a b c d"},
        {std::string("a\0b", 3), "a" + losses(1) + "b"},
        {"\x01\x1F\x7F", losses(3)},
        {"\xEF\xBF\xBE", losses(1)},         // U+FFFE
        {"\xEF\xBF\xBF", losses(1)},         // U+FFFF
        {"\xED\xA0\x80", losses(3)},         // a surrogate
        {"\xC0\xAF", losses(2)},             // "/" in two bytes
        {"\xE0\x80\xAF", losses(3)},         // "/" in three bytes
        {"\xF0\x82\x82\xAC", losses(4)},     // the Euro sign in four bytes
        {"\xF4\x90\x80\x80", losses(4)},     // beyond U+10FFFF
        {"\xF8\x88\x80\x80\x80", losses(5)}, // five bytes
        {"\x80x", losses(1) + "x"},          // a continuation alone
        {"\xE6\x9C", losses(2)},             // cut short
        {"\xC3(", losses(1) + "("},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(xmlText(text), expected) << ::testing::PrintToString(text);
}

TEST(Text, IsComparedWithoutRegardToTheCaseOfAsciiLettersOnly)
{
    EXPECT_TRUE(equalsIgnoringCase("Lyrex-1_a", "lYREX-1_A"));
    EXPECT_FALSE(equalsIgnoringCase("a", "ab"));
    EXPECT_FALSE(equalsIgnoringCase("@[", "`{")) << "neighbours of the letters";
    EXPECT_FALSE(equalsIgnoringCase("\xC3\x84", "\xC3\xA4"));
}

TEST(DeviceNames, AreRecognisedInEveryDisguise)
{
    for (const char* name : {"con", "CON", "Prn.png", "aux.tar.gz", "NUL .png", "nul", "com0",
                             "COM1.png", "lpt9", "conin$", "CONOUT$.txt"})
        EXPECT_TRUE(isDeviceName(name)) << name;
    for (const char* name : {"", "c", "console", "con1", "com", "com10", "lpt", "xcom1", "comA",
                             ".con", "wood.con", "auxiliary.png"})
        EXPECT_FALSE(isDeviceName(name)) << name;
}

} // namespace

} // namespace vyr::MaterialTranslation::core
