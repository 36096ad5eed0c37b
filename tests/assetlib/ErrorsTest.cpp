#include <gtest/gtest.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

struct ErrorCase
{
    const char* name;
    std::string json;
    /// The errors of the file, without its name.
    std::vector<std::string> expected;
};

void checkAll(const std::vector<ErrorCase>& cases)
{
    for (const ErrorCase& one : cases)
    {
        SCOPED_TRACE(one.name);
        AssetFiles files;
        files.add("f.json", one.json);
        std::vector<std::string> expected;
        for (const std::string& line : one.expected)
            expected.push_back("f.json:" + line);
        EXPECT_EQ(files.errors(), expected);
    }
}

std::string repeated(const std::string& text, std::size_t count)
{
    std::string result;
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

std::string nestedArrays(std::size_t depth)
{
    return repeated("[", depth) + repeated("]", depth);
}

const std::string at = " /materials/0/properties/p";

TEST(AssetErrors, BrokenJsonHasLineAndColumn)
{
    const std::string good = R"({"assetLibrary": 1})";
    checkAll({
        {"cut off",
         "{\"assetLibrary\": 1,\n \"materials\": [",
         {"2:16: broken JSON: while parsing value - unexpected end of input; expected '[', '{', or "
          "a literal"}},
        {"token in the wrong place",
         "{\"assetLibrary\": 1,\n  }",
         {"2:3: broken JSON: while parsing object key - unexpected '}'; expected string literal"}},
        {"literal in the wrong place",
         "{ true}",
         {"1:3: broken JSON: while parsing object key - unexpected true literal; expected string "
          "literal"}},
        {"text in the wrong place",
         "[1 \"\\u00e4\"]",
         {"1:4: broken JSON: while parsing array - unexpected string literal; expected ']'"}},
        {"misspelt literal",
         "{\"a\": tru}",
         {"1:10: broken JSON: while parsing value - invalid literal"}},
        {"columns count characters",
         "{\"a\": \"\xC3\xA4\xE2\x82\xAC\" 1}",
         {"1:12: broken JSON: while parsing object - unexpected number literal; expected '}'"}},
        {"something behind",
         good + "\n x",
         {"2:2: broken JSON: while parsing value - invalid literal; expected end of input"}},
        {"byte-order mark counts for nothing",
         "\xEF\xBB\xBF{,",
         {"1:2: broken JSON: while parsing object key - unexpected ','; expected string literal"}},
        {"not UTF-8",
         "{\"a\": \"\xFF\"}",
         {"1:8: broken JSON: while parsing value - invalid string: ill-formed UTF-8 byte"}},
        {"UTF-16",
         std::string("\xFF\xFE{\0}\0", 6),
         {"1:1: expected UTF-8, this looks like UTF-16"}},
        {"NUL behind the end",
         good + std::string("\0x", 2),
         {"1:20: broken JSON: a NUL character"}},
        {"only spaces",
         " \n",
         {"2:1: broken JSON: while parsing value - unexpected end of input; expected '[', '{', or "
          "a literal"}},
        {"comment", "// x\n{}", {"1:1: broken JSON: while parsing value - invalid literal"}},
    });
}

TEST(AssetErrors, OfTheDocument)
{
    checkAll({
        {"no object", "[]", {" expected an object"}},
        {"no version", "{}", {" expected the key \"assetLibrary\""}},
        {"version",
         R"({"assetLibrary": 2, "new": 1})",
         {" /assetLibrary: expected 1, the version of the format"}},
        {"keys",
         R"({"assetLibrary": 1, "material": [], "a/b~\n": 0})",
         {" /material: unknown key; did you mean \"materials\"?",
          " /a~1b~0\\u000a: unknown key; expected assetLibrary, $schema, texturePaths, materials, "
          "textures or overlays"}},
        {"arrays",
         R"({"assetLibrary": 1, "materials": {}, "textures": 0, "overlays": "", "texturePaths": [1, "a"]})",
         {" /texturePaths/0: expected a text", " /materials: expected an array",
          " /textures: expected an array", " /overlays: expected an array"}},
        {"key twice",
         R"({"assetLibrary": 1, "textures": [{"a": 1, "b": {"c": 1, "c": 2}, "a": 2, "a": 3}]})",
         {" /textures/0/b/c: expected each key only once in an object",
          " /textures/0/a: expected each key only once in an object",
          " /textures/0: expected the key \"id\"", " /textures/0: expected the key \"schema\"",
          " /textures/0/a: unknown key; expected id, schema, name, displayName, description, "
          "properties or genericProperties",
          " /textures/0/b: unknown key; expected id, schema, name, displayName, description, "
          "properties or genericProperties"}},
        {"depth",
         R"({"$schema": )" + nestedArrays(64) + R"(, "assetLibrary": 1})",
         {" /$schema" + repeated("/0", 63) +
          ": expected at most 64 arrays and objects inside one another"}},
        {"depth that is allowed",
         R"({"$schema": )" + nestedArrays(63) + R"(, "assetLibrary": 1})",
         {}},
        {"hostile depth",
         R"({"assetLibrary": 1, "$schema": )" + nestedArrays(200000) + "}",
         {" /$schema" + repeated("/0", 63) +
          ": expected at most 64 arrays and objects inside one another"}},
    });
}

TEST(AssetErrors, OfAssets)
{
    checkAll({
        {"no object",
         R"({"assetLibrary": 1, "materials": [7]})",
         {" /materials/0: expected an object"}},
        {"texts",
         R"({"assetLibrary": 1, "materials": [{"id": "", "schema": 1, "name": null, "description": [], "displayName": {"eng": 1, "deu": "x"}}]})",
         {" /materials/0/id: expected an id that is not empty",
          " /materials/0/schema: expected a text", " /materials/0/name: expected a text",
          " /materials/0/displayName/eng: expected a text",
          " /materials/0/description: expected a text"}},
        {"display name",
         materialFile(R"("displayName": 1)"),
         {" /materials/0/displayName: expected a text, or an object from language to text"}},
        {"property tables",
         materialFile(R"("properties": [], "genericProperties": 1)"),
         {" /materials/0/properties: expected an object from property name to property",
          " /materials/0/genericProperties: expected an object from property name to property"}},
        {"null",
         materialFile(
             R"("properties": {"Hidden": null, "hidden": null}, "genericProperties": {"Hidden": null})"),
         {" /materials/0/properties/hidden: expected an object, true or false, a number, or 3 or 4 "
          "numbers",
          " /materials/0/genericProperties/Hidden: expected an object, true or false, a number, or "
          "3 or 4 numbers"}},
        {"id twice",
         R"({"assetLibrary": 1, "materials": [{"id": "a", "schema": "S"}], "textures": [{"id": "a", "schema": "S"}]})",
         {" /textures/0/id: expected an id of its own, \"a\" belongs to f.json: /materials/0"}},
        {"inline",
         propertyFile(
             R"({"type": "color", "connected": [{"id": "i", "schema": "S"}, {"Schema": "S"}, 3]})"),
         {at + "/connected/0/id: expected no id in an inline asset",
          at + "/connected/1: expected the key \"schema\"",
          at + "/connected/1/Schema: unknown key; did you mean \"schema\"?",
          at + "/connected/2: expected the id of an asset, or an asset"}},
    });
}

TEST(AssetErrors, OfProperties)
{
    const auto value = [](const std::string& type, const std::string& json)
    { return propertyFile(R"({"type": ")" + type + R"(", "value": )" + json + "}"); };
    checkAll({
        {"no property",
         propertyFile("\"x\""),
         {at + ": expected an object, true or false, a number, or 3 or 4 numbers"}},
        {"no type", propertyFile(R"({"value": 1})"), {at + ": expected the key \"type\""}},
        {"near type",
         value("sclar", "1"),
         {at + "/type: unknown type \"sclar\"; did you mean \"scalar\"?"}},
        {"far type",
         value("matrix", "1"),
         {at + "/type: unknown type \"matrix\"; expected string, uri, boolean, integer, scalar, "
               "color, reference, choice, text or referenceList"}},
        {"key",
         propertyFile(R"({"type": "string", "conected": "m", "extra": 0})"),
         {at + "/conected: unknown key; did you mean \"connected\"?",
          at + "/extra: unknown key; expected type, value, unit or connected"}},
        {"null is no value", value("string", "null"), {at + "/value: expected a text"}},
        {"boolean", value("boolean", "0"), {at + "/value: expected true or false"}},
        {"integer range",
         value("integer", "[2147483648, -2147483649, 1.5, 2147483647, -2147483648, 1e2]"),
         {at + "/value/0: expected a whole number from -2147483648 to 2147483647",
          at + "/value/1: expected a whole number from -2147483648 to 2147483647",
          at + "/value/2: expected a whole number from -2147483648 to 2147483647"}},
        {"integer beyond 64 bits",
         value("integer", "18446744073709551617"),
         {at + "/value: expected a whole number from -2147483648 to 2147483647"}},
        {"scalar range",
         value("scalar", "[3.5e38, 3.4e38, -1e300, 1e999, 1e-999]"),
         {at + "/value/0: expected a number within the range of a 32-bit float",
          at + "/value/2: expected a number within the range of a 32-bit float",
          at + "/value/3: expected a number within the range of a 32-bit float"}},
        {"no components", value("scalar", "[]"), {at + "/value: expected at least one number"}},
        {"text for a number", value("scalar", "\"1\""), {at + "/value: expected a number"}},
        {"colour", propertyFile("[1, 2]"), {at + ": expected 3 or 4 numbers"}},
        {"colour of texts",
         value("color", R"([1, 2, "3"])"),
         {at + "/value: expected 3 or 4 numbers"}},
        {"colour range",
         value("color", "[0, 1e39, 0]"),
         {at + "/value/1: expected a number within the range of a 32-bit float"}},
        {"reference",
         value("reference", "\"m\""),
         {at + "/value: expected no value: this type only carries \"connected\""}},
        {"choice",
         value("choice", "1"),
         {at + "/value: expected a choice's name, an array of names, or an object with \"choices\" "
               "and \"selected\""}},
        {"choice index",
         value("choice", R"({"choices": ["a", "b"], "selected": [1, 2, -1]})"),
         {at + "/value/selected/1: expected a whole number from 0 to 1",
          at + "/value/selected/2: expected a whole number from 0 to 1"}},
        {"choice keys",
         value("choice", R"({"choices": "a", "select": []})"),
         {at + "/value/choices: expected an array of texts",
          at + "/value: expected the key \"selected\"",
          at + "/value/select: unknown key; did you mean \"selected\"?"}},
        {"near unit",
         propertyFile(R"({"type": "scalar", "value": 1, "unit": "milimeter"})"),
         {at + "/unit: unknown unit \"milimeter\"; did you mean \"millimeter\"?"}},
        {"unit code",
         propertyFile(R"({"type": "scalar", "value": 1, "unit": -1})"),
         {at + "/unit: expected a whole number from 0 to 4294967295"}},
        {"unit of a colour",
         propertyFile(R"({"type": "color", "unit": "meter"})"),
         {at + "/unit: expected no unit: only a scalar has one"}},
    });
}

TEST(AssetErrors, OfOverlays)
{
    const auto overlay = [](const std::string& members)
    { return R"({"assetLibrary": 1, "overlays": [{"name": "o", )" + members + "}]}"; };
    checkAll({
        {"type",
         overlay(R"("type": "decals")"),
         {" /overlays/0/type: expected decal or thread, found \"decals\"; did you mean "
          "\"decal\"?"}},
        {"keys of the other type",
         overlay(R"("type": "decal", "flag": true)"),
         {" /overlays/0/flag: unknown key; expected name, type, kind, texture, value0, value1 or "
          "value2"}},
        {"decal",
         overlay(
             R"("type": "decal", "kind": 1.5, "value2": 4294967296, "texture": {"unit": 10, "uvScale": [1], "rotation": null})"),
         {" /overlays/0/kind: expected a whole number from -2147483648 to 2147483647",
          " /overlays/0/texture/unit: expected a whole number from 0 to 9",
          " /overlays/0/texture/uvScale: expected 2 numbers",
          " /overlays/0/texture/rotation: expected a number",
          " /overlays/0/value2: expected a whole number from -2147483648 to 2147483647"}},
        {"unit that is no length",
         overlay(R"("type": "decal", "texture": {"unit": "degrees"})"),
         {" /overlays/0/texture/unit: unknown unit \"degrees\"; expected nanometer, micron, "
          "millimeter, centimeter, inch, foot, yard, meter, kilometer or mile"}},
        {"thread",
         overlay(R"("type": "thread", "threadTexture": null, "baseMaterialColor": [1, 1, 1])"),
         {" /overlays/0/threadTexture: expected an object",
          " /overlays/0/baseMaterialColor: expected 4 numbers"}},
    });
}

} // namespace

} // namespace vyr::assetlib::tests
