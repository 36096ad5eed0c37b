#include <filesystem>

#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "AssetFiles.h"

namespace vyr::assetlib::tests
{

namespace
{

using kelvor::platform::core::string::WideString;

/// A chain of folders: lib/ (of the file), tex/ (texturePaths), program/ (options).
class AssetImages : public testing::Test
{
  protected:
    AssetImages()
    {
        for (const char8_t* name :
             {u8"lib/own.png", u8"tex/own.png", u8"tex/tex.png", u8"program/tex.png",
              u8"program/program.png", u8"tex/Sub/Wood.PNG", u8"tex/two.png", u8"program/Two.png",
              u8"tex/dot.png", u8"tex/exact.", u8"tex/exact", u8"tex/a b#\u00E4.png",
              u8"program/W\u00C4NDE.png", u8"tex/folder.png/x"})
            _files.folder.write(name, "x");
    }

    LoadResult load(const std::string& members)
    {
        const auto path = _files.folder.write(
            "lib/f.json", memberFile(R"("texturePaths": ["../tex", "gone"], )" + members));
        return assetlib::load({support::TemporaryFolder::utf8(path)},
                              {{_files.folder.text() + "/program"}});
    }

    /// For a reference as JSON, "~" for the folder: the value, and the warnings in short.
    Lines found(std::string reference)
    {
        const std::string folder = _files.folder.text();
        if (const auto at = reference.find('~'); at != reference.npos)
            reference.replace(at, 1, folder);
        const LoadResult result = load(
            R"("materials": [{"id": "m", "schema": "S", "properties": {"p": {"type": "uri", "value": )" +
            reference + "}}}]");
        Lines lines{uri(find(result.library.value(), "p"))};
        if (lines[0].starts_with(folder))
            lines[0].replace(0, folder.size(), "~");
        for (const LoadWarning& warning : result.warnings)
            lines.push_back(warning.asset + ' ' + warning.property + ' ' + warning.pointer);
        return lines;
    }

    AssetFiles _files;
};

TEST_F(AssetImages, AreFoundInTheChainOfFolders)
{
    std::string dots = "x.png";
    for (int i = 0; i < 200000; ++i)
        dots.insert(0, "./");
    EXPECT_EQ(found('"' + dots + '"'), Lines{dots});
    // Lines of a reference and the answer; an indented line is a warning.
    std::istringstream table(
        support::readFile(std::filesystem::path(VYR_CASES) / "references.txt"));
    std::vector<std::pair<std::string, Lines>> rows;
    for (std::string line; std::getline(table, line);)
    {
        if (const auto arrow = line.find(" => "); arrow != line.npos)
            rows.push_back({line.substr(0, arrow), {line.substr(arrow + 4)}});
        else
            rows.at(rows.size() - 1).second.push_back(line.substr(2));
    }
    EXPECT_GT(rows.size(), 20u);
    for (const auto& [reference, expected] : rows)
        EXPECT_EQ(found(reference), expected) << reference;
}

TEST_F(AssetImages, OfOverlaysAndTheirWarnings)
{
    const LoadResult result = load(R"("overlays": [
        {"name": "T", "type": "thread", "threadTexture": {"path": "sub/wood.png"}}])");
    EXPECT_EQ(std::get<Thread>(result.library.value().overlays()[0].content).threadTexture->path,
              _files.folder.text() + "/tex/Sub/Wood.PNG");
    ASSERT_EQ(result.warnings.size(), 1u);
    EXPECT_EQ(result.warnings[0].asset + '/' + result.warnings[0].property, "T/threadTexture");
    EXPECT_EQ(_files.relative(result.warnings[0].format()),
              "lib/f.json:2:67: /overlays/0/threadTexture/path: no file \"sub/wood.png\" with this "
              "upper and lower case; taken: \"tex/Sub/Wood.PNG\"");
}

TEST_F(AssetImages, EachFileUsesItsOwnFolders)
{
    const std::string material =
        R"("schema": "S", "properties": {"p": {"type": "uri", "value": "own.png"}}}])";
    _files.add("lib/a.json", memberFile(R"("materials": [{"id": "m", )" + material));
    _files.add("tex/b.json", memberFile(R"("materials": [{"id": "n", )" + material));
    const Library library = _files.library();
    EXPECT_EQ(_files.relative(uri(find(library, "p", 0))), "lib/own.png");
    EXPECT_EQ(_files.relative(uri(find(library, "p", 1))), "tex/own.png");
}

TEST_F(AssetImages, TheResolverOfTheProcess)
{
    const platform::IPathResolver& resolver =
        *platform::GetIAssetLibraryManager()->GetPathResolver();
    const std::string folder = _files.folder.text();
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
    EXPECT_EQ(resolved("folder.png"), "unchanged");

    WideString wide(L"unchanged");
    EXPECT_TRUE(resolver.Resolve(WideString(L"W\u00C4NDE.png"), wide));
    EXPECT_TRUE(wide.str().ends_with(L"/program/W\u00C4NDE.png"));
    EXPECT_FALSE(resolver.Resolve(WideString(std::wstring(1, wchar_t(0xD800))), wide));
    setResolverFolders({});
}

} // namespace

} // namespace vyr::assetlib::tests
