#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/MaterialXConverter.h>

#include "support/AssetBuilder.h"
#include "support/Documents.h"
#include "support/Host.h"
#include "support/TemporaryFolder.h"

namespace vyr::MaterialTranslation
{

namespace
{

namespace fs = std::filesystem;
namespace mx = MaterialX;

using namespace vyr::support;
using kelvor::platform::core::string::UTF8String;
using Names = std::vector<std::string>;

/// Gathering by the public class: the images of "src" go to "out".
class GatheringRoad : public ::testing::Test
{
  protected:
    GatheringRoad()
    {
        resetHost();
        fs::create_directories(_folder / "src");
        fs::create_directory(_folder / "out");
        _options.outputDirectory = UTF8String(TemporaryFolder::utf8(_folder / "out"));
        _options.copyTextures = true;
    }
    void TearDown() override { EXPECT_EQ(liveAssets(), 0u); }

    fs::path image(const std::string& name, const std::string& sample = "tile_height.png") const
    {
        const fs::path to = _folder / "src" / name;
        fs::copy_file(fs::path(VYR_SOURCE_DIR) / "samples/textures" / sample, to);
        return to;
    }

    bool translate(const AssetPtr& asset)
    {
        MaterialXConverter converter(_options);
        _document = mx::createDocument();
        return converter.TranslateToMaterialX(*asset, UTF8String("M"), _document);
    }

    /// The file that a node of the material's graph reads.
    std::string fileOf(const std::string& node) const
    {
        const mx::NodeGraphPtr graph = _document->getNodeGraph("M_nodegraph");
        const mx::NodePtr found = graph ? graph->getNode(node) : nullptr;
        return found ? found->getInput("file")->getValueString() : "no node";
    }

    static std::size_t warnings(DiagnosticCode code)
    {
        const auto& all = lastDiagnostics();
        return static_cast<std::size_t>(std::count_if(
            all.begin(), all.end(), [code](const Diagnostic& d) { return d.code == code; }));
    }

    TemporaryFolder _folder;
    ConverterOptions _options;
    mx::DocumentPtr _document;
};

TEST_F(GatheringRoad, EndsInAFolderThatHasEverythingOnce)
{
    const fs::path color = image("wood.png", "tile_color.png");
    const fs::path height = image("relief.png");
    const fs::path gloss = image("relief_normalmap.png", "tile_gloss.png");
    const AssetPtr asset = AssetBuilder()
                               .connect("generic_diffuse", bitmapAsset(color.string()))
                               .connect("generic_cutout_opacity", bitmapAsset(color.string()))
                               .connect("generic_glossiness", bitmapAsset(gloss.string()))
                               .scalar("generic_bump_amount", 1)
                               .connect("generic_bump_map", bitmapAsset(height.string()))
                               .build();
    const Names before = {readFile(color), readFile(height), readFile(gloss)};
    std::string first;
    for (int run = 0; run < 3; ++run)
    {
        ASSERT_TRUE(translate(asset));
        const std::string out = TemporaryFolder::utf8(_folder / "out/M/");
        EXPECT_EQ(fileOf("generic_diffuse"), out + "wood.png");
        EXPECT_EQ(fileOf("generic_cutout_opacity"), out + "wood.png");
        EXPECT_EQ(fileOf("generic_glossiness"), out + "relief_normalmap.png");
        EXPECT_EQ(fileOf("generic_bump_map"), out + "relief_normalmap-2.png");
        EXPECT_TRUE(readFile(fileOf("generic_glossiness")) == before[2]);
        EXPECT_TRUE(readFile(fileOf("generic_bump_map")) != before[2]);
        EXPECT_EQ(_folder.entries(),
                  (Names{"out", "out/M", "out/M/relief_normalmap-2.png",
                         "out/M/relief_normalmap.png", "out/M/wood.png", "src", "src/relief.png",
                         "src/relief_normalmap.png", "src/wood.png"}));
        EXPECT_TRUE((Names{readFile(color), readFile(height), readFile(gloss)}) == before);
        EXPECT_TRUE(isSound(_document));
        if (run == 0)
            first = xmlOf(_document);
        EXPECT_EQ(xmlOf(_document), first) << run;
    }
}

/// The user works on the images where they were gathered.
TEST_F(GatheringRoad, LeavesSourcesInTheFolderAsTheyAre)
{
    fs::create_directory(_folder / "out/M");
    Names paths;
    for (const char* name : {"wood.png", "wood_normalmap.png"})
    {
        const fs::path place = _folder / "out/M" / name;
        fs::rename(image(name), place);
        paths.push_back(place.string());
    }
    _folder.write("out/M/wood_normalmap.png", "mine, and no bake");
    const AssetPtr asset = AssetBuilder()
                               .connect("generic_diffuse", bitmapAsset(paths[0]))
                               .connect("generic_cutout_opacity", bitmapAsset(paths[1]))
                               .scalar("generic_bump_amount", 1)
                               .connect("generic_bump_map", bitmapAsset(paths[0]))
                               .build();
    for (int run = 0; run < 2; ++run)
    {
        ASSERT_TRUE(translate(asset));
        EXPECT_EQ(fileOf("generic_diffuse"), paths[0]);
        EXPECT_EQ(fileOf("generic_cutout_opacity"), paths[1]);
        EXPECT_TRUE(readFile(paths[1]) == "mine, and no bake");
        EXPECT_NE(fileOf("generic_bump_map"), paths[1]);
    }
}

TEST_F(GatheringRoad, MakesNothingForAMaterialWithoutImages)
{
    const std::string missing = TemporaryFolder::utf8(_folder / "src/missing.png");
    const struct
    {
        AssetPtr asset;
        bool translated;
    } cases[] = {
        {AssetBuilder().color("generic_diffuse", 1, 0, 0).build(), true},
        {AssetBuilder().connect("generic_diffuse", bitmapAsset(missing)).build(), true},
        {AssetBuilder()
             .connect("generic_diffuse", bitmapAsset(image("wood.png").string()))
             .string("generic_glossiness", "shiny")
             .build(),
         false},
    };
    for (const auto& [asset, translated] : cases)
    {
        EXPECT_EQ(translate(asset), translated);
        EXPECT_TRUE(fs::is_empty(_folder / "out"));
    }
    ASSERT_TRUE(translate(cases[1].asset));
    EXPECT_EQ(fileOf("generic_diffuse"), missing);
    EXPECT_EQ(warnings(DiagnosticCode::TextureFileMissing), 1u);
}

TEST_F(GatheringRoad, CopiesNothingUnlessAsked)
{
    _options.copyTextures = false;
    const std::string wood = image("wood.png").string();
    ASSERT_TRUE(translate(AssetBuilder().connect("generic_diffuse", bitmapAsset(wood)).build()));
    EXPECT_EQ(fileOf("generic_diffuse"), wood);
    EXPECT_TRUE(fs::is_empty(_folder / "out"));
}

TEST_F(GatheringRoad, FollowsNoLinkOutOfTheOutputFolder)
{
    fs::create_directory(_folder / "elsewhere");
    fs::create_directory_symlink(_folder / "elsewhere", _folder / "out/M");
    const std::string wood = image("wood.png").string();
    const AssetPtr relief = AssetBuilder()
                                .scalar("generic_bump_amount", 1)
                                .connect("generic_bump_map", bitmapAsset(wood))
                                .build();
    const AssetPtr color = AssetBuilder().connect("generic_diffuse", bitmapAsset(wood)).build();
    for (const AssetPtr* asset : {&relief, &color})
    {
        EXPECT_THROW(translate(*asset), fs::filesystem_error);
        EXPECT_TRUE(fs::is_empty(_folder / "elsewhere"));
    }
}

} // namespace

} // namespace vyr::MaterialTranslation
