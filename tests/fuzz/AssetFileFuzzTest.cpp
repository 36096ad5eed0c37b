#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <kelvor/platform/assets/IProperty.h>
#include <vyr/assetlib/Library.h>

#include "support/TemporaryFolder.h"

namespace
{

namespace platform = kelvor::platform::assets;
using kelvor::platform::core::string::UTF8String;
using namespace vyr::assetlib;

/// Whether a table finds what it lists, and so do all assets that it is connected to.
bool holds(const platform::IPropertyConstTable& table)
{
    for (std::size_t i = 0; i < table.GetPropertyCount(); ++i)
    {
        const platform::IProperty* property = table.GetProperty(i);
        UTF8String name;
        property->GetIdentifier(name);
        if (table.FindProperty(name) != property)
            return false;
        for (std::size_t k = 0; k < property->GetConnectionCount(); ++k)
        {
            const std::unique_ptr<platform::IAssetInstance, platform::IAssetInstanceDeleter>
                connected(property->GetConnectedAsset(k));
            if (!connected || !connected->GetDefinition() || !holds(*connected))
                return false;
        }
    }
    return true;
}

/// What is wrong with what came of a file's bytes, empty when all holds: a library or errors, each error on
/// one line with a place inside the file, tables that find what they list, references all given back.
std::string checkAssetFile(const std::filesystem::path& file, const std::string& bytes)
{
    // A new file each time: some file systems write a truncated one to the disk at once.
    std::filesystem::remove(file);
    std::ofstream(file, std::ios::binary) << bytes;
    const LoadResult result = load({file.string()});
    if (result.library.has_value() != result.errors.empty())
        return "neither library nor errors";
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20; };
    const auto lines = static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n')) + 1;
    for (const LoadError& error : result.errors)
    {
        const std::string text = error.format();
        if (text.empty() || std::any_of(text.begin(), text.end(), isControl) ||
            (error.line == 0 && !bytes.empty()) || error.line > lines ||
            error.column > bytes.size() + 1)
            return "error: " + text;
    }
    if (!result.library)
        return {};
    for (const Material& material : result.library->materials())
    {
        const platform::IPropertyConstTable* generic = material.asset->GetGenericPropertyTable();
        if (!holds(*material.asset) || (generic && !holds(*generic)) ||
            result.library->findMaterial(material.id) != &material)
            return "material: " + material.id;
    }
    return result.library->referenceCount() == 0 ? "" : "references are left";
}

} // namespace

/// What libFuzzer calls, and the test as well.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const vyr::support::TemporaryFolder folder;
    const std::string bytes(data, data + size);
    const std::string wrong = checkAssetFile(folder / "f.json", bytes);
    if (!wrong.empty())
    {
        std::cerr << wrong << '\n' << bytes << '\n';
        std::abort();
    }
    return 0;
}

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
