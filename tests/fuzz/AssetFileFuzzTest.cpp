#include <chrono>
#include <filesystem>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "FuzzCase.h"

namespace vyr::assetlib::tests
{

namespace
{

const std::string seeds[] = {
    R"({"assetLibrary": 1, "texturePaths": ["t"], "materials": [{"id": "a", "schema": "GenericSchema",
"name": "n", "displayName": {"eng": "N"}, "properties": {"x": 1.5e3, "Hidden": null, "c": {"type": "color",
"value": [0.1, 0.2, 0.3, 1], "connected": ["t", {"schema": "S", "properties": {"u": {"type": "uri",
"value": "a\\b.PNG"}}}]}, "s": {"type": "scalar", "value": [1, 2], "unit": "inch"}}, "genericProperties":
{"i": {"type": "integer", "value": -7}}}], "textures": [{"id": "t", "schema": "NoiseSchema", "properties":
{"k": {"type": "choice", "value": {"choices": ["a", "b"], "selected": [1]}}, "b": true}}]})",
    R"({"assetLibrary": 1, "overlays": [{"name": "D", "type": "decal", "kind": 2, "texture": {"path":
"file:%20x.png", "unit": 4, "uvScale": [1, 2], "rotation": 30}}, {"name": "T", "type": "thread", "flag": true,
"baseMaterialColor": [1, 1, 1, 1], "normalTexture": {}}]})",
};

/// Pieces that matter to the reader.
const std::string pieces[] = {
    "{",
    "}",
    "[",
    "]",
    ",",
    ":",
    "\"",
    "\\",
    "null",
    "true",
    "1e999",
    "-1e-999",
    "99999999999999999999",
    "\"type\"",
    "\"connected\": \"a\"",
    "\"t\"",
    "\"a\"",
    "\"reference\"",
    "\\u0000",
    "\\ud800",
    "\xFF",
    "\xC3",
    std::string(1, '\0'),
    "\xEF\xBB\xBF",
    "\n",
    "[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[",
    "..",
    "//",
    "file://",
    "-0",
    "0x1",
    "\"id\"",
    "\"value\"",
    "\"schema\": \"S\",",
};

/// One to four changes: bytes flipped, cut out, doubled or moved, pieces put in. Plain arithmetic on the
/// generator's numbers, since the standard distributions differ from one library to the next.
std::string mutated(std::string text, std::mt19937& random)
{
    const auto below = [&](std::size_t limit) { return limit == 0 ? 0 : random() % limit; };
    for (std::size_t changes = 1 + below(4); changes > 0; --changes)
    {
        const std::size_t at = below(text.size() + 1);
        const std::string part = text.substr(at, below(40));
        switch (below(5))
        {
        case 0:
            if (at < text.size())
                text[at] = static_cast<char>(random());
            break;
        case 1:
            text.erase(at, part.size());
            break;
        case 2:
            text.insert(below(text.size() + 1), part);
            break;
        case 3:
            text.insert(at, pieces[below(std::size(pieces))]);
            break;
        default:
            text.replace(at, part.size(), pieces[below(std::size(pieces))]);
            break;
        }
    }
    return text;
}

TEST(AssetFileFuzz, NothingBreaksTheReader)
{
    constexpr unsigned seed = 20240607;
    constexpr int mostRounds = 20000;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    const std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                         ("vyr-fuzz-" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(folder);
    const std::filesystem::path file = folder / "f.json";

    std::mt19937 random(seed);
    int round = 0;
    for (; round < mostRounds && std::chrono::steady_clock::now() < end; ++round)
    {
        const std::string bytes = mutated(seeds[random() % std::size(seeds)], random);
        const std::string wrong = checkAssetFile(file, bytes);
        if (!wrong.empty())
        {
            ADD_FAILURE() << "round " << round << ": " << wrong << "\n" << bytes;
            break;
        }
    }
    RecordProperty("rounds", round);
    std::filesystem::remove_all(folder);
}

} // namespace

} // namespace vyr::assetlib::tests
