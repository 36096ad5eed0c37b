#include <chrono>
#include <fstream>
#include <map>
#include <tuple>

#if defined(__linux__)
#include <sys/stat.h>
#endif

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

using namespace std::chrono_literals;

/// What a material's folder becomes over several runs, and where it cannot be made; names and kinds of
/// files are in the golden cases.
class Gathering : public HostTest
{
  protected:
    std::string image(const char* name, const char* sample = "tile_height.png") const
    {
        const fs::path to = _folder / name;
        fs::create_directories(to.parent_path());
        fs::copy_file(fs::path(VYR_SOURCE_DIR) / "samples/textures" / sample, to);
        return TemporaryFolder::utf8(to);
    }

    Translation gather(const AssetPtr& asset) const
    {
        return translate(asset, with(&ConverterOptions::copyTextures, true));
    }

    /// The files that nodes of the material's graph read.
    static Names filesOf(const Translation& translation, const Names& nodes)
    {
        Names files;
        const mx::NodeGraphPtr graph = translation.document->getNodeGraph("M_nodegraph");
        for (const std::string& name : nodes)
        {
            const mx::NodePtr node = graph ? graph->getNode(name) : nullptr;
            files.push_back(node ? node->getInput("file")->getValueString() : "no node");
        }
        return files;
    }
};

/// Everything is there once, run after run. The user works on images where they were gathered: they
/// stay as they are, and a baked file yields its name to one.
TEST_F(Gathering, EndsInAFolderThatHasEverythingOnce)
{
    const std::string wood = image("src/wood.png", "tile_color.png");
    const std::string height = image("M/relief.png");
    const std::string mine = image("M/relief_normalmap.png", "tile_gloss.png");
    fs::create_hard_link(wood, _folder / "src/hard.png");
    const AssetPtr asset = generic(
        textured("generic_diffuse", wood) + "," +
        textured("generic_reflectivity_at_0deg", TemporaryFolder::utf8(_folder / "src/hard.png")) +
        "," + textured("generic_cutout_opacity", mine) + "," +
        textured("generic_bump_map", height) + R"(, "generic_bump_amount": 1)");
    const Names before = {readFile(wood), readFile(height), readFile(mine)};
    const std::string out = _folder.text() + "/M/";
    std::string first;
    for (int run = 0; run < 3; ++run)
    {
        const Translation one = gather(asset);
        EXPECT_EQ(
            filesOf(one, {"generic_diffuse", "generic_reflectivity_at_0deg",
                          "generic_cutout_opacity", "generic_bump_map"}),
            (Names{out + "wood.png", out + "wood.png", mine, out + "relief_normalmap-2.png"}));
        EXPECT_EQ(_folder.entries(),
                  (Names{"M", "M/relief.png", "M/relief_normalmap-2.png", "M/relief_normalmap.png",
                         "M/wood.png", "src", "src/hard.png", "src/wood.png"}));
        EXPECT_TRUE((Names{readFile(wood), readFile(height), readFile(mine)}) == before);
        EXPECT_EQ(fs::last_write_time(_folder / "M/wood.png"), fs::last_write_time(wood));
        first = run == 0 ? xmlOf(one.document) : first;
        EXPECT_EQ(xmlOf(one.document), first) << run;
    }
}

TEST_F(Gathering, CopiesWhatIsNotUpToDate)
{
    const fs::path source = _folder.write("src/wood.png", "src/wood.png");
    const fs::path copy = _folder / "M/wood.png";
    const AssetPtr asset = generic(textured("generic_diffuse", TemporaryFolder::utf8(source)));
    const auto time = fs::last_write_time(source);
    const std::tuple<const char*, std::string, fs::file_time_type, bool> cases[] = {
        {"the copy itself", "src/wood.png", time, false},
        {"another image of that size and time", "SRC/WOOD.PNG", time, true},
        {"newer", "SRC/WOOD.PNG", time + 1h, false},
        {"older", "SRC/WOOD.PNG", time - 1h, true},
        {"newer and shorter", "SRC", time + 1h, true},
        {"newer and longer", "SRC/WOOD.PNG, and more", time + 1h, true},
    };
    for (const auto& [what, content, copyTime, isCopied] : cases)
    {
        _folder.write("M/wood.png", content);
        fs::last_write_time(copy, copyTime);
        EXPECT_EQ(filesOf(gather(asset), {"generic_diffuse"}), Names{TemporaryFolder::utf8(copy)});
        EXPECT_EQ(readFile(copy), isCopied ? "src/wood.png" : content) << what;
        EXPECT_EQ(_folder.entries().size(), 4u) << what;
    }
}

/// Links in the place of a copy are replaced, and what they lead to stays as it is.
TEST_F(Gathering, ReplacesLinksAndLeavesPipesAlone)
{
    const std::string precious = image("src/precious.png");
    const std::string oak = image("src/oak.png", "tile_color.png");
    fs::create_directory(_folder / "M");
    const AssetPtr asset = generic(textured("generic_diffuse", oak));
    for (const char* target : {"src/precious.png", "src/new.png", "src"})
    {
        fs::remove(_folder / "M/oak.png");
        fs::create_symlink(_folder / target, _folder / "M/oak.png");
        EXPECT_TRUE(gather(asset).succeeded);
        EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(_folder / "M/oak.png"))) << target;
        EXPECT_EQ(readFile(_folder / "M/oak.png"), readFile(oak));
        EXPECT_EQ(readFile(precious),
                  readFile(fs::path(VYR_SOURCE_DIR) / "samples/textures/tile_height.png"));
        EXPECT_FALSE(fs::exists(_folder / "src/new.png"));
    }
#if defined(__linux__)
    // Whoever reads from it waits.
    const std::string pipe = _folder.text() + "/src/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const Translation piped =
        gather(generic(textured("generic_diffuse", "x"),
                       {.lies = {{"unifiedbitmap_Bitmap", {.uri = {{pipe, pipe}}}}}}));
    EXPECT_EQ(filesOf(piped, {"generic_diffuse"}), Names{pipe});
#endif
}

TEST_F(Gathering, MakesNothingWhereNothingIsToBeGathered)
{
    const std::string missing = _folder.text() + "/src/missing.png";
    const std::string wood = image("src/wood.png");
    EXPECT_EQ(filesOf(gather(generic(textured("generic_diffuse", missing))), {"generic_diffuse"}),
              Names{missing});
    EXPECT_FALSE(gather(generic(textured("generic_diffuse", wood) +
                                R"(, "generic_glossiness": {"type": "string", "value": "x"})"))
                     .succeeded);
    EXPECT_EQ(filesOf(translate(generic(textured("generic_diffuse", wood))), {"generic_diffuse"}),
              Names{wood});
    EXPECT_EQ(_folder.entries(), (Names{"src", "src/wood.png"}));
}

/// What the host has in a document already stays as it is.
TEST_F(Gathering, TouchesOnlyWhatTheTranslationAdded)
{
    const std::string wood = image("src/wood.png");
    const std::string other = image("src/other.png");
    const mx::DocumentPtr document = mx::createDocument();
    document->addNode("image", "old")->setInputValue("file", other, mx::FILENAME_TYPE_STRING);
    ConverterOptions options = with(&ConverterOptions::copyTextures, true);
    EXPECT_TRUE(MaterialXConverter(options).TranslateToMaterialX(
        *generic(textured("generic_diffuse", wood)), "M", document));
    EXPECT_EQ(document->getNode("old")->getInputValue("file")->getValueString(), other);
    EXPECT_TRUE(fs::exists(_folder / "M/wood.png") && !fs::exists(_folder / "M/other.png"));
}

/// A link out of the output folder, a file in the folder's place, and an output folder that is
/// read-only.
TEST_F(Gathering, FailsWhereTheFolderCannotBeMade)
{
    const std::string wood = image("src/wood.png");
    const AssetPtr relief =
        generic(textured("generic_bump_map", wood) + R"(, "generic_bump_amount": 1)");
    const AssetPtr color = generic(textured("generic_diffuse", wood));
    const auto expectFailure = [&](const Names& left)
    {
        for (const AssetPtr* asset : {&relief, &color})
            EXPECT_THROW(gather(*asset), fs::filesystem_error);
        EXPECT_EQ(_folder.entries(), left);
    };
    fs::create_directory(_folder / "elsewhere");
    fs::create_directory_symlink(_folder / "elsewhere", _folder / "M");
    expectFailure({"M", "elsewhere", "src", "src/wood.png"});
    fs::remove(_folder / "M");
    fs::remove(_folder / "elsewhere");
    _folder.write("M", "mine");
    expectFailure({"M", "src", "src/wood.png"});
    EXPECT_EQ(readFile(_folder / "M"), "mine");

    fs::remove(_folder / "M");
    fs::permissions(_folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
    const bool bites = !std::ofstream(_folder / "probe");
    if (bites)
        expectFailure({"src", "src/wood.png"});
    fs::permissions(_folder.path(), fs::perms::owner_all);
    if (!bites)
        GTEST_SKIP() << "read-only folders do not stop this user";
}

} // namespace

} // namespace vyr::hosttests
