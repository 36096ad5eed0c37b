#include <filesystem>

#include <gtest/gtest.h>
#include <kelvor/platform/assets/IAssetLibraryManager.h>
#include <kelvor/platform/assets/IUriValue.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

using kelvor::platform::core::string::WideString;

std::string escaped(std::string text)
{
    for (auto at = text.find('\\'); at != text.npos; at = text.find('\\', at + 2))
        text.insert(at, 1, '\\');
    return text;
}

std::string imageFile(const std::string& reference)
{
    return R"({"assetLibrary": 1, "texturePaths": ["../tex", "gone"], "materials": [
        {"id": "m", "schema": "S", "properties": {
         "p": {"type": "uri", "value": ")" +
           escaped(reference) + "\"}}}]}";
}

/// A chain of folders: lib/ (of the file), tex/ (texturePaths), program/ (options).
class AssetImages : public testing::Test
{
  protected:
    AssetImages()
    {
        for (const char* name :
             {"lib/own.png", "tex/own.png", "tex/tex.png", "program/tex.png", "program/program.png",
              "tex/Sub/Wood.PNG", "tex/two.png", "program/Two.png", "tex/dot.png", "tex/exact.",
              "tex/exact", "tex/a b#\xC3\xA4.png", "program/W\xC3\x84NDE.png"})
            _files.folder().write(pathOf(name), "x");
        std::filesystem::create_directories(_files.folder() / "tex" / "folder.png");
    }

    static std::filesystem::path pathOf(const std::string& name)
    {
        return std::filesystem::path(std::u8string(name.begin(), name.end()));
    }

    LoadResult load(const std::string& reference)
    {
        const auto path = _files.folder().write("lib/f.json", imageFile(reference));
        return assetlib::load({support::TemporaryFolder::utf8(path)},
                              {{_files.folder().text() + "/program"}});
    }

    AssetFiles _files;
};

TEST_F(AssetImages, AreFoundInTheChainOfFolders)
{
    const std::string folder = _files.folder().text();
    struct Row
    {
        std::string reference;
        std::string expected;
        bool isDoubtful = false;
    };
    const Row rows[] = {
        {"own.png", "lib/own.png"},
        {"tex.png", "tex/tex.png"},
        {"program.png", "program/program.png"},
        {"../tex/dot.png", "tex/dot.png"},
        {folder + "/tex/tex.png", "tex/tex.png"},
        {"./Sub/Wood.PNG", "tex/Sub/Wood.PNG"},
        {"Sub\\Wood.PNG", "tex/Sub/Wood.PNG"},
        {"..\\tex\\tex.png", "tex/tex.png"},
        {"dot.png.", "tex/dot.png"},
        {"exact.", "tex/exact."},
        {"sub/WOOD.png", "tex/Sub/Wood.PNG", true},
        {"SUB\\wood.png.", "tex/Sub/Wood.PNG", true},
        {folder + "/TEX/Tex.png", "tex/tex.png", true},
        {"W\xC3\xA4nde.png", "program/W\xC3\x84NDE.png", true},
        {"TWO.png", "TWO.png", true}, // two.png or Two.png
        {"Two.png", "program/Two.png"},
        {"file:tex.png", "tex/tex.png"},
        {"file:a%20b%23%c3%A4.png", "tex/a b#\xC3\xA4.png"},
        {"a b#\xC3\xA4.png", "tex/a b#\xC3\xA4.png"},
        {"file://" + folder + "/tex/dot.png", "tex/dot.png"},
        {"FILE://LOCALHOST" + folder + "/tex/dot.png", "tex/dot.png"},
        {"file:%00", "file:%00"},
        {"100%.png", "100%.png"},
        {"folder.png", "folder.png"},
        {"missing.png", "missing.png"},
        {"tex.png/x", "tex.png/x"},
        {".", "."},
        {"..", ".."},
        {"/", "/"},
        {"", ""},
        {std::string(5000, 'x'), std::string(5000, 'x')},
    };
    for (const Row& row : rows)
    {
        const LoadResult result = load(row.reference);
        ASSERT_TRUE(result.library) << row.reference;
        const std::string found = uri(find(*result.library->materials()[0].asset, "p"));
        std::error_code error;
        const bool isFound =
            std::filesystem::is_regular_file(pathOf(folder + "/" + row.expected), error);
        EXPECT_EQ(found, isFound ? folder + "/" + row.expected : row.expected);
        EXPECT_EQ(result.warnings.size(), row.isDoubtful ? 1u : 0u) << row.reference;
    }
}

TEST_F(AssetImages, WarningsNameTheirPlace)
{
    const LoadResult result = load("sub/wood.png");
    ASSERT_EQ(result.warnings.size(), 1u);
    EXPECT_EQ(result.warnings[0].asset, "m");
    EXPECT_EQ(result.warnings[0].property, "p");
    EXPECT_EQ(
        _files.relative(result.warnings[0].format()),
        "lib/f.json: /materials/0/properties/p/value: no file \"sub/wood.png\" with this upper "
        "and lower case; taken: \"tex/Sub/Wood.PNG\"");

    const auto path = _files.folder().write("lib/o.json", R"({"assetLibrary": 1, "overlays": [
        {"name": "T", "type": "thread", "threadTexture": {"path": "OWN.png"}}]})");
    const LoadResult overlay = assetlib::load({support::TemporaryFolder::utf8(path)});
    EXPECT_EQ(std::get<Thread>(overlay.library.value().overlays()[0].content).threadTexture->path,
              _files.folder().text() + "/lib/own.png");
    ASSERT_EQ(overlay.warnings.size(), 1u);
    EXPECT_EQ(overlay.warnings[0].asset + '/' + overlay.warnings[0].property, "T/threadTexture");
}

TEST_F(AssetImages, EachFileUsesItsOwnFolders)
{
    _files.folder().write("other/own.png", "y");
    _files.add("lib/a.json", propertyFile(R"({"type": "uri", "value": "own.png"})"));
    _files.add("other/b.json", R"({"assetLibrary": 1, "materials": [{"id": "n", "schema": "S",
        "properties": {"p": {"type": "uri", "value": "own.png"}}}]})");
    const Library library = _files.library();
    EXPECT_EQ(_files.relative(uri(find(*library.materials()[0].asset, "p"))), "lib/own.png");
    EXPECT_EQ(_files.relative(uri(find(*library.materials()[1].asset, "p"))), "other/own.png");
}

TEST_F(AssetImages, TheResolverOfTheProcess)
{
    const platform::IPathResolver& resolver =
        *platform::GetIAssetLibraryManager()->GetPathResolver();
    const std::string folder = _files.folder().text();
    const auto resolved = [&](const std::string& reference)
    {
        UTF8String path("unchanged");
        const bool found = resolver.Resolve(UTF8String(reference), path);
        EXPECT_EQ(found, path.str() != "unchanged");
        return _files.relative(path.str());
    };
    EXPECT_EQ(resolved(folder + "/tex/tex.png"), "tex/tex.png");
    EXPECT_EQ(resolved("tex.png"), "unchanged");
    setResolverFolders({folder + "/gone", folder + "/program"});
    EXPECT_EQ(resolved("tex.png"), "program/tex.png");
    EXPECT_EQ(resolved("program.png."), "program/program.png");
    EXPECT_EQ(resolved("folder.png"), "unchanged");
    EXPECT_EQ(resolved(""), "unchanged");

    WideString wide(L"unchanged");
    EXPECT_TRUE(resolver.Resolve(WideString(L"W\u00C4NDE.png"), wide));
    EXPECT_TRUE(wide.str().ends_with(L"/program/W\u00C4NDE.png"));
    EXPECT_FALSE(resolver.Resolve(WideString(std::wstring(1, wchar_t(0xD800))), wide));
    setResolverFolders({});
}

} // namespace

} // namespace vyr::assetlib::tests
