#include <filesystem>
#include <fstream>

#include "host/HostTest.h"

namespace vyr::hosttests
{

namespace
{

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

/// Gathering by the public class.
class GatheringRoad : public HostTest
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
TEST_F(GatheringRoad, EndsInAFolderThatHasEverythingOnce)
{
    const std::string wood = image("src/wood.png", "tile_color.png");
    const std::string height = image("M/relief.png");
    const std::string mine = image("M/relief_normalmap.png", "tile_gloss.png");
    AssetBuilder builder;
    builder.connect("generic_diffuse", bitmapAsset(wood));
    builder.connect("generic_reflectivity_at_0deg", bitmapAsset(wood));
    builder.connect("generic_cutout_opacity", bitmapAsset(mine));
    builder.scalar("generic_bump_amount", 1).connect("generic_bump_map", bitmapAsset(height));
    const AssetPtr asset = builder.build();
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
                         "M/wood.png", "src", "src/wood.png"}));
        EXPECT_TRUE((Names{readFile(wood), readFile(height), readFile(mine)}) == before);
        first = run == 0 ? xmlOf(one.document) : first;
        EXPECT_EQ(xmlOf(one.document), first) << run;
    }
}

TEST_F(GatheringRoad, MakesNothingWhereNothingIsToBeGathered)
{
    const std::string missing = _folder.text() + "/src/missing.png";
    const std::string wood = image("src/wood.png");
    const auto colored = [](const std::string& path)
    { return std::move(AssetBuilder().connect("generic_diffuse", bitmapAsset(path))); };
    EXPECT_EQ(filesOf(gather(colored(missing).build()), {"generic_diffuse"}), Names{missing});
    EXPECT_FALSE(gather(colored(wood).string("generic_glossiness", "shiny").build()).succeeded);
    EXPECT_EQ(filesOf(translate(colored(wood).build()), {"generic_diffuse"}), Names{wood});
    EXPECT_EQ(_folder.entries(), (Names{"src", "src/wood.png"}));
}

/// A link out of the output folder, a file in the folder's place, and an output folder that is
/// read-only.
TEST_F(GatheringRoad, FailsWhereTheFolderCannotBeMade)
{
    const std::string wood = image("src/wood.png");
    const AssetPtr relief = AssetBuilder()
                                .scalar("generic_bump_amount", 1)
                                .connect("generic_bump_map", bitmapAsset(wood))
                                .build();
    const AssetPtr color = AssetBuilder().connect("generic_diffuse", bitmapAsset(wood)).build();
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
