#include <chrono>
#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

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
// clang-format off
const std::string pieces[] = {
    "{", "}", "[", "]", ",", ":", "\"", "\\", "null", "true", "1e999", "-1e-999", "99999999999999999999", "-0", "0x1",
    "\"id\"", "\"type\"", "\"value\"", "\"schema\": \"S\",", "\"connected\": \"a\"", "\"a\"", "\"t\"", "\"reference\"",
    "\\u0000", "\\ud800", "\xFF", "\xC3", std::string(1, '\0'), "\xEF\xBB\xBF", "\n", "[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[[",
    "..", "//", "file://",
};
// clang-format on

/// One to four changes: bytes flipped, cut out, doubled or moved, pieces put in. Plain arithmetic on the
/// generator's numbers, since the standard distributions differ from one library to the next.
std::string mutated(std::string text, std::mt19937& random)
{
    for (std::size_t changes = 1 + random() % 4; changes > 0; --changes)
    {
        const std::size_t at = random() % (text.size() + 1);
        const std::string part = text.substr(at, random() % 40);
        const std::string& piece = pieces[random() % std::size(pieces)];
        const std::size_t kind = random() % 5;
        if (kind == 0)
            text.replace(at, 1, 1, static_cast<char>(random()));
        else if (kind == 1)
            text.erase(at, part.size());
        else if (kind == 2)
            text.insert(random() % (text.size() + 1), part);
        else
            text.replace(at, kind == 3 ? 0 : part.size(), piece);
    }
    return text;
}

TEST(AssetFileFuzz, NothingBreaksTheReader)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    std::mt19937 random(20240607);
    for (int round = 0; round < 20000 && std::chrono::steady_clock::now() < end; ++round)
    {
        const std::string bytes = mutated(seeds[random() % std::size(seeds)], random);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
}

} // namespace
