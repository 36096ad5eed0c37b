#include <gtest/gtest.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

TEST(AssetErrors, OfNoAssetFileHaveLineAndColumn)
{
    const std::string good = R"({"assetLibrary": 1})";
    // clang-format off
    const std::pair<std::string, const char*> rows[] = {
        {"{\"assetLibrary\": 1,\n \"materials\": [", "2:16: broken JSON: unexpected end of the file"},
        {"{\"a\": 1,\n  }", "1:8: broken JSON: expected no comma behind the last item"},
        {"{ true}", "1:3: broken JSON: expected a key in double quotes, found \"true\""},
        {"[1 \"\\u00e4\"]", "1:4: broken JSON: expected ',' or ']', found a text"},
        {"[\n tru-e]", "2:2: broken JSON: expected a value, found \"tru-e\""},
        // Columns count characters, and what is found is one.
        {"{\"a\": \"\xC3\xA4\xE2\x82\xAC\" \xC3\xB6\xC3\xB6}", "1:12: broken JSON: expected ',' or '}', found \"\xC3\xB6\""},
        {good + "\n {", "2:2: broken JSON: expected the end of the file, found \"{\""},
        {"\xEF\xBB\xBF{,", "1:2: broken JSON: expected a key in double quotes, found \",\""},
        {"{\"a\": \"\n\"}", "1:8: broken JSON: expected no control character in a text, found \"\\n\""},
        {"{\"a\": \"\xFF\"}", "1:8: broken JSON: invalid UTF-8 in a text"},
        {"[\"\\ud800\"]", "1:9: broken JSON: half of a surrogate pair in a text"},
        {"[1.]", "1:4: broken JSON: no digit after decimal point"},
        {"\n ", "1:1: broken JSON: expected a value"},
        {std::string("\xFF\xFE{\0}\0", 6), "1:1: expected UTF-8, this looks like UTF-16"},
        {good + std::string("\0x", 2), "1:20: broken JSON: a NUL character"},
        {"\n[]", "2:1: expected an object"},
        {"{}", "1:1: expected the key \"assetLibrary\""},
        {"{\"assetLibrary\": 2, \"new\": 1}", "1:18: /assetLibrary: expected 1, the version of the format"},
    };
    // clang-format on
    for (const auto& [json, expected] : rows)
        EXPECT_EQ(AssetFiles().add("f.json", json).errors(),
                  Lines{std::string("f.json:") + expected});
}

TEST(AssetErrors, OfNesting)
{
    const auto errors = [](std::size_t depth)
    {
        const std::string arrays = std::string(depth, '[') + std::string(depth, ']');
        return AssetFiles().add("f.json", memberFile("\"$schema\": " + arrays)).errors();
    };
    std::string place = "f.json:1:95: /$schema";
    for (int i = 0; i < 63; ++i)
        place += "/0";
    EXPECT_EQ(errors(63), Lines());
    for (const std::size_t depth : {64u, 200000u})
        EXPECT_EQ(errors(depth),
                  Lines{place + ": expected at most 64 arrays and objects inside one another"});

    // What is deeper is not read, however deep it goes.
    std::string assets = "[";
    std::string ends;
    for (int i = 0; i < 100000; ++i)
    {
        ends += "}}}";
        assets +=
            R"({"id": "a", "schema": "S", "properties": {"p": {"type": "text", "connected": )";
    }
    EXPECT_LT(AssetFiles()
                  .add("f.json", memberFile("\"materials\": " + assets + "0" + ends + "]"))
                  .errors()
                  .size(),
              50u);
}

TEST(AssetErrors, OfFilesThatCannotBeRead)
{
    AssetFiles files;
    const std::string folder = files.folder.text();
    files.paths = {folder + "/missing.json", folder};
    files.add("empty.json", "").add("good.json", materialFile("\"name\": \"n\""));
    files.add("bad.json", "{}").paths.emplace_back();
    EXPECT_EQ(files.errors(),
              (Lines{"missing.json: no such file", folder + ": expected a file, this is a folder",
                     "empty.json: the file is empty",
                     "bad.json:1:1: expected the key \"assetLibrary\"", ": no such file"}));
}

} // namespace

} // namespace vyr::assetlib::tests
