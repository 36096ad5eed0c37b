#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <MaterialTranslation/Definitions.h>
#include <MaterialTranslation/NodeForms.h>

#include "Documents.h"
#include "support/TemporaryFolder.h"

namespace vyr::tests
{
namespace
{

namespace fs = std::filesystem;
using namespace MaterialTranslation;

/// Leaves the folders as they are by default.
class DataLibrary : public ::testing::Test
{
  protected:
    ~DataLibrary() override { setDefinitionFolders({}); }
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

TEST_F(DataLibrary, IsReadOnceAndShared)
{
    const auto first = definitionLibrary();
    EXPECT_EQ(definitionLibrary(), first);
    EXPECT_NE(first->getNodeDef("kvor:ND_metal_surfaceshader"), nullptr);
    EXPECT_NE(first->getNodeDef("ND_standard_surface_surfaceshader"), nullptr);
    const auto standard = definitionLibrary(DefinitionSet::Standard);
    EXPECT_EQ(standard->getNodeDef("kvor:ND_metal_surfaceshader"), nullptr);
    EXPECT_NE(standard->getNodeDef("ND_standard_surface_surfaceshader"), nullptr);

    setDefinitionFolders({});
    EXPECT_NE(definitionLibrary(), first);
}

TEST_F(DataLibrary, ComesFromTheFoldersGiven)
{
    const DefinitionFolders found = definitionFolders();
    const support::TemporaryFolder folder;
    fs::copy(found.kvor, folder.path());
    folder.write(
        "kvor_more.mtlx",
        R"(<?xml version="1.0"?><materialx version="1.39"><typedef name="felt"/></materialx>)");
    setDefinitionFolders({found.standard, folder.path()});
    EXPECT_NE(definitionLibrary()->getTypeDef("felt"), nullptr);
    EXPECT_EQ(definitionFolders().kvor, folder.path());
}

TEST_F(DataLibrary, SaysWhatIsMissingOrBroken)
{
    const support::TemporaryFolder folder;
    EXPECT_NE(failure({folder.path(), {}}).find("no node definitions in " + folder.text()),
              std::string::npos);
    EXPECT_NE(failure({{}, folder / "none"}).find("kvor_textures_defs.mtlx"), std::string::npos);
    folder.write("kvor_textures_defs.mtlx", "<materialx");
    EXPECT_NE(failure({{}, folder.path()}).find("kvor_textures_defs.mtlx"), std::string::npos);
    // What failed once is tried again.
    EXPECT_EQ(failure({}), "");
}

TEST_F(DataLibrary, ServesSeveralThreads)
{
    setDefinitionFolders({});
    std::vector<std::thread> threads;
    std::vector<std::string> problems(4);
    for (std::string& problem : problems)
        threads.emplace_back(
            [&problem]
            {
                for (const Sample& sample : samples())
                {
                    for (const auto& message : applyNodeForm(sample.document, NodeForm::Standard))
                        problem += message.text;
                    for (const auto& message : validateDocument(sample.document))
                        problem += message.path + ": " + message.text + "\n";
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    for (const std::string& problem : problems)
        EXPECT_EQ(problem, "");
}

} // namespace
} // namespace vyr::tests
