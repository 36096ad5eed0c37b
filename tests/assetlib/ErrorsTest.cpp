#include <gtest/gtest.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

/// Checks a table of inputs, which `wrap` makes files of, and their errors below a pointer.
void checkErrors(const std::string& pointer, std::string (*wrap)(const std::string&),
                 const std::string& table)
{
    checkTable(table, [&](const std::string& input)
               { return AssetFiles().add("f.json", wrap(input)).errors("f.json: " + pointer); });
}

std::string overlayFile(const std::string& members)
{
    return memberFile(R"("overlays": [{"name": "o", )" + members + "}]");
}

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

TEST(AssetErrors, HavePlacesInTheOrderOfTheText)
{
    AssetFiles files;
    files.add("g.json", R"-({
    "a/b~\n\"": 0, "materials": [
        7, {"schema": "S", "id": "\\\"{[,", "properties": {
            "p": [1, 1e999, -3.5e38], "q": 99999999999999999999, "r": 1e-999,
            "ä": 1e999, "\u00e4" : {"type": "scalar", "value": [1,2,
                -1e999]}}, "id": "x", "id": 0}
]   , "texturePaths":[[{}],true], "assetLibrary": 1})-");
    const std::string range = ": expected a number within the range of a 32-bit float";
    EXPECT_EQ(
        files.errors(),
        (Lines{"g.json:2:5: /a~1b~0\\n\": unknown key; expected assetLibrary, $schema, "
               "texturePaths, materials, textures or overlays",
               "g.json:3:9: /materials/0: expected an object",
               "g.json:4:22: /materials/1/properties/p/1" + range,
               "g.json:4:29: /materials/1/properties/p/2" + range,
               "g.json:5:18: /materials/1/properties/\xC3\xA4" + range,
               "g.json:5:25: /materials/1/properties/\xC3\xA4: expected each key only once in an "
               "object",
               "g.json:6:28: /materials/1/id: expected each key only once in an object",
               "g.json:7:23: /texturePaths/0: expected a text",
               "g.json:7:28: /texturePaths/1: expected a text"}));
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
}

TEST(AssetErrors, AreAllToldWithTheirPlaces)
{
    checkErrors("/", memberFile, R"-(
"materials": {}, "textures": 0, "overlays": "", "texturePaths": [1, "a"] => materials: expected an array
  textures: expected an array
  overlays: expected an array
  texturePaths/0: expected a text
"materials": [{"a": 1, "b": {"c": 1, "c": 2}, "a": 2, "a": 3}] => materials/0: expected the key "id"
  materials/0: expected the key "schema"
  materials/0/a: unknown key; expected id, schema, name, displayName, description, properties or genericProperties
  materials/0/b: unknown key; expected id, schema, name, displayName, description, properties or genericProperties
  materials/0/b/c: expected each key only once in an object
  materials/0/a: expected each key only once in an object
"material": [] => material: unknown key; did you mean "materials"?
"materials": [{"id": "", "schema": 1, "name": null, "description": [], "displayName": {"eng": 1, "deu": "x"}}] => materials/0/id: expected an id that is not empty
  materials/0/schema: expected a text
  materials/0/name: expected a text
  materials/0/description: expected a text
  materials/0/displayName/eng: expected a text
)-");
    checkErrors("/materials/0/", materialFile, R"-(
"displayName": 1 => displayName: expected a text, or an object from language to text
"properties": [], "genericProperties": 1 => properties: expected an object from property name to property
  genericProperties: expected an object from property name to property
"properties": {"Hidden": null, "hidden": null}, "genericProperties": {"Hidden": null} => properties/hidden: expected an object, true or false, a number, or 3 or 4 numbers
  genericProperties/Hidden: expected an object, true or false, a number, or 3 or 4 numbers
)-");
    checkErrors("/materials/0/properties/p", propertyFile, R"-(
"x" => : expected an object, true or false, a number, or 3 or 4 numbers
[1, 2] => : expected 3 or 4 numbers
{"value": 1} => : expected the key "type"
{"type": "sclar", "value": 1} => /type: unknown type "sclar"; did you mean "scalar"?
{"type": "matrix"} => /type: unknown type "matrix"; expected string, uri, boolean, integer, scalar, color, reference, choice, text or referenceList
{"type": "string", "conected": "m", "extra": 0} => /conected: unknown key; did you mean "connected"?
  /extra: unknown key; expected type, value, unit or connected
{"type": "string", "value": null} => /value: expected a text
{"type": "boolean", "value": 0} => /value: expected true or false
{"type": "integer", "value": [2147483648, -2147483649, 1.5, 2147483647, -2147483648, 1e2]} => /value/0: expected a whole number from -2147483648 to 2147483647
  /value/1: expected a whole number from -2147483648 to 2147483647
  /value/2: expected a whole number from -2147483648 to 2147483647
{"type": "integer", "value": 18446744073709551617} => /value: expected a whole number from -2147483648 to 2147483647
{"type": "scalar", "value": [3.5e38, 3.4e38, -1e300, 1e999, 1e-999]} => /value/0: expected a number within the range of a 32-bit float
  /value/2: expected a number within the range of a 32-bit float
  /value/3: expected a number within the range of a 32-bit float
{"type": "scalar", "value": []} => /value: expected at least one number
{"type": "scalar", "value": "1"} => /value: expected a number
{"type": "color", "value": [1, 2, "3"]} => /value: expected 3 or 4 numbers
{"type": "color", "value": [0, 1e39, 0]} => /value/1: expected a number within the range of a 32-bit float
{"type": "reference", "value": "m"} => /value: expected no value: this type only carries "connected"
{"type": "choice", "value": 1} => /value: expected a choice's name, an array of names, or an object with "choices" and "selected"
{"type": "choice", "value": {"choices": ["a", "b"], "selected": [1, 2, -1]}} => /value/selected/1: expected a whole number from 0 to 1
  /value/selected/2: expected a whole number from 0 to 1
{"type": "choice", "value": {"choices": "a", "select": []}} => /value: expected the key "selected"
  /value/choices: expected an array of texts
  /value/select: unknown key; did you mean "selected"?
{"type": "scalar", "unit": "milimeter"} => /unit: unknown unit "milimeter"; did you mean "millimeter"?
{"type": "scalar", "unit": -1} => /unit: expected a whole number from 0 to 4294967295
{"type": "color", "unit": "meter"} => /unit: expected no unit: only a scalar has one
{"type": "color", "connected": [{"id": "i", "schema": "S"}, {"Schema": "S"}, 3]} => /connected/0/id: expected no id in an inline asset
  /connected/1: expected the key "schema"
  /connected/1/Schema: unknown key; did you mean "schema"?
  /connected/2: expected the id of an asset, or an asset
)-");
    checkErrors("/overlays/0/", overlayFile, R"-(
"type": "decals" => type: expected decal or thread, found "decals"; did you mean "decal"?
"type": "decal", "flag": true => flag: unknown key; expected name, type, kind, texture, value0, value1 or value2
"type": "decal", "kind": 1.5, "value2": 4294967296, "texture": {"unit": 10, "uvScale": [1], "rotation": null} => kind: expected a whole number from -2147483648 to 2147483647
  value2: expected a whole number from -2147483648 to 2147483647
  texture/unit: expected a whole number from 0 to 9
  texture/uvScale: expected 2 numbers
  texture/rotation: expected a number
"type": "decal", "texture": {"unit": "degrees"} => texture/unit: unknown unit "degrees"; expected nanometer, micron, millimeter, centimeter, inch, foot, yard, meter, kilometer or mile
"type": "thread", "threadTexture": null, "baseMaterialColor": [1, 1, 1] => threadTexture: expected an object
  baseMaterialColor: expected 4 numbers
)-");
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
