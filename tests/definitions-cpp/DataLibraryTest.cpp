#include <filesystem>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include <MaterialTranslation/Definitions.h>
#include <MaterialTranslation/NodeForms.h>

#include "Documents.h"
#include "support/TemporaryFolder.h"

namespace vyr::tests
{
namespace
{

using namespace MaterialTranslation;

/// Leaves the folders as they are by default.
struct DataLibrary : ::testing::Test
{
    ~DataLibrary() override { setDefinitionFolders({}); }
    support::TemporaryFolder _folder;
};

std::string failure(const DefinitionFolders& folders)
{
    setDefinitionFolders(folders);
    try
    {
        definitionLibrary();
    }
    catch (const std::runtime_error& error)
    {
        return error.what();
    }
    return "";
}

TEST_F(DataLibrary, IsReadOnceFromTheFoldersGiven)
{
    const auto first = definitionLibrary();
    EXPECT_EQ(definitionLibrary(), first);
    EXPECT_TRUE(first->getNodeDef("kvor:ND_metal_surfaceshader"));
    const auto standard = definitionLibrary(DefinitionSet::Standard);
    EXPECT_FALSE(standard->getNodeDef("kvor:ND_metal_surfaceshader"));
    EXPECT_TRUE(standard->getNodeDef("ND_standard_surface_surfaceshader"));

    const DefinitionFolders found = definitionFolders();
    std::filesystem::copy(found.kvor, _folder.path());
    _folder.write("kvor_more.mtlx", textOf(R"(<typedef name="felt"/>)"));
    setDefinitionFolders({found.standard, _folder.path()});
    EXPECT_TRUE(definitionLibrary()->getTypeDef("felt"));
    EXPECT_EQ(definitionFolders().kvor, _folder.path());
}

TEST_F(DataLibrary, SaysWhatIsMissingOrBroken)
{
    const std::string missing = "no node definitions in " + _folder.text();
    const std::string file = "kvor_textures_defs.mtlx";
    EXPECT_NE(failure({_folder.path(), {}}).find(missing), missing.npos);
    EXPECT_NE(failure({{}, _folder / "none"}).find(file), file.npos);
    _folder.write(file, "<materialx");
    EXPECT_NE(failure({{}, _folder.path()}).find(file), file.npos);
    // What failed once is tried again.
    EXPECT_EQ(failure({}), "");
}

TEST_F(DataLibrary, ServesSeveralThreads)
{
    setDefinitionFolders({});
    std::vector<std::thread> threads;
    std::vector<std::size_t> problems(4);
    for (std::size_t& count : problems)
        threads.emplace_back(
            [&count]
            {
                for (const auto& [name, document] : samples())
                    count += applyNodeForm(document, NodeForm::Standard).size() +
                             validateDocument(document).size();
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(problems, std::vector<std::size_t>(4));
}

} // namespace
} // namespace vyr::tests
