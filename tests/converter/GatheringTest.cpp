#include "converter/TextureGathering.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

#if defined(__linux__)
#include <sys/stat.h>
#endif

namespace vyr::MaterialTranslation::converter
{

namespace
{

namespace fs = std::filesystem;
namespace mx = MaterialX;

using namespace std::chrono_literals;
using support::readFile;
using support::TemporaryFolder;
using Names = std::vector<std::string>;

/// Content and time of every regular file below a folder.
std::map<std::string, std::pair<std::string, fs::file_time_type>> snapshot(const fs::path& folder)
{
    std::map<std::string, std::pair<std::string, fs::file_time_type>> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && !entry.is_symlink())
            files[entry.path().string()] = {readFile(entry.path()), entry.last_write_time()};
    return files;
}

/// The user's files are in "src", the output goes to "out". Every file holds its own path, and no test
/// may change anything in "src".
class Gathering : public ::testing::Test
{
  protected:
    Gathering()
    {
        fs::create_directory(_folder / "out");
        fs::create_directory(_folder / "src");
    }

    void TearDown() override { EXPECT_EQ(snapshot(_folder / "src"), _users); }

    /// The text of a path below the test's folder.
    std::string at(const std::string& path) const { return TemporaryFolder::utf8(_folder / path); }

    /// Makes a file that holds its own path.
    std::string file(const std::string& path)
    {
        _folder.write(path, path);
        _users = snapshot(_folder / "src");
        return at(path);
    }

    /// Gathers what a document of nodes with those files refers to.
    void gather(const Names& values, const std::vector<fs::path>& baked = {})
    {
        _diagnostics.clear();
        _inputs.clear();
        _document = mx::createDocument();
        for (const std::string& value : values)
            _inputs.push_back(_document->addNode("image")->setInputValue("file", value,
                                                                         mx::FILENAME_TYPE_STRING));
        gatherTextures({_document, 0, "M", at("out"), baked, {_diagnostics, "asset"}});
    }

    /// What the inputs refer to, each as "place: content"; the place is below "out/M".
    Names places() const
    {
        Names result;
        const std::string folder = at("out/M/");
        for (const mx::InputPtr& input : _inputs)
        {
            const std::string& path = input->getValueString();
            const bool inside = path.rfind(folder, 0) == 0;
            result.push_back((inside ? path.substr(folder.size()) : "elsewhere") + ": " +
                             readFile(fs::path(std::u8string(path.begin(), path.end()))));
        }
        return result;
    }

    std::size_t count(DiagnosticCode code) const
    {
        return static_cast<std::size_t>(std::count_if(_diagnostics.begin(), _diagnostics.end(),
                                                      [code](const Diagnostic& d)
                                                      { return d.code == code; }));
    }

    TemporaryFolder _folder;
    mx::DocumentPtr _document;
    std::vector<mx::InputPtr> _inputs;
    std::vector<Diagnostic> _diagnostics;

  private:
    std::map<std::string, std::pair<std::string, fs::file_time_type>> _users;
};

TEST_F(Gathering, CopiesAFileOnceForAllItsInputs)
{
    fs::create_symlink(file("src/wood.png"), _folder / "src/link.png");
    fs::create_hard_link(_folder / "src/wood.png", _folder / "src/hard.png");
    const std::string wood = file("src/wood.png");
    gather({wood, wood, at("src/../src/wood.png"), at("src//wood.png"), at("src/link.png"),
            at("src/hard.png")});
    EXPECT_EQ(places(), Names(6, "wood.png: src/wood.png"));
    EXPECT_EQ(_folder.entries().size(), 7u);
    EXPECT_TRUE(_diagnostics.empty());
    EXPECT_EQ(fs::last_write_time(_folder / "out/M/wood.png"), fs::last_write_time(wood));
}

TEST_F(Gathering, KeepsDifferentFilesOfOneNameApart)
{
    gather({file("src/a/wood.png"), file("src/b/wood.png"), file("src/c/WOOD.png"),
            file("src/d/wood-2.png"), file("src/e/wo?od.png"), file("src/f/wo_od.png"),
            file("src/g/\xC3\x96l.png"), file("src/h/\xC3\xB6l.png"),
            file("src/i/back\\wood.png")});
    EXPECT_EQ(places(),
              (Names{"wood.png: src/a/wood.png", "wood-2.png: src/b/wood.png",
                     "WOOD-3.png: src/c/WOOD.png", "wood-2-2.png: src/d/wood-2.png",
                     "wo_od.png: src/e/wo?od.png", "wo_od-2.png: src/f/wo_od.png",
                     "\xC3\x96l.png: src/g/\xC3\x96l.png", "\xC3\xB6l-2.png: src/h/\xC3\xB6l.png",
                     "wood-4.png: src/i/back\\wood.png"}));
    EXPECT_EQ(count(DiagnosticCode::TextureRenamed), 7u);
}

/// Files of the user's that are in the material's folder already: each stays what it is, whatever
/// order they are asked for in.
TEST_F(Gathering, LeavesFilesInTheFolderAlone)
{
    const Names names = {"out/M/wood.png", "out/M/Wood.png",  "out/M/wood-2.png",
                         "out/M/a?b.png",  "out/M/a_b.png",   "src/wood.png",
                         "src/X Y%20.png", "out/M/x y%20.png"};
    Names paths;
    for (const std::string& name : names)
        paths.push_back(file(name));
    const auto before = snapshot(_folder / "out");
    for (std::size_t turn = 0; turn < paths.size(); ++turn)
    {
        gather(paths);
        const auto after = snapshot(_folder / "out");
        for (const auto& [path, state] : before)
            ASSERT_EQ(after.at(path), state) << path;
        for (std::size_t i = 0; i < paths.size(); ++i)
            ASSERT_NE(places()[i].find(": " + paths[i].substr(at("").size())), std::string::npos)
                << paths[i] << " is now " << places()[i];
        for (const auto& [path, state] : after)
            if (before.count(path) == 0)
                fs::remove(path);
        std::rotate(paths.begin(), paths.begin() + 1, paths.end());
    }
}

TEST_F(Gathering, MovesOnlyItsOwnFilesAndLetsUsersHaveTheName)
{
    const std::string mine = file("out/M/wood_normalmap.png");
    const std::string mineToo = file("out/M/wood_normalmap-2.png");
    gather({mine, file("src/Wood_NormalMap.png"), mineToo, mine}, {mine, mineToo});
    EXPECT_EQ(places(), (Names{"wood_normalmap-3.png: out/M/wood_normalmap.png",
                               "Wood_NormalMap.png: src/Wood_NormalMap.png",
                               "wood_normalmap-2.png: out/M/wood_normalmap-2.png",
                               "wood_normalmap-3.png: out/M/wood_normalmap.png"}));
    EXPECT_EQ(_folder.entries().size(), 7u) << "moved, not copied";
    EXPECT_TRUE(_diagnostics.empty()) << "nobody asked for the name of a baked file";
}

TEST_F(Gathering, CopiesWhatIsNotUpToDate)
{
    const fs::path source = file("src/wood.png");
    const fs::path copy = _folder / "out/M/wood.png";
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
        _folder.write("out/M/wood.png", content);
        fs::last_write_time(copy, copyTime);
        fs::permissions(copy, fs::perms::owner_read | fs::perms::group_read);
        gather({source.string()});
        EXPECT_EQ(places(), Names{"wood.png: " + (isCopied ? "src/wood.png" : content)}) << what;
        EXPECT_EQ(fs::last_write_time(copy), isCopied ? time : copyTime) << what;
        EXPECT_EQ(_folder.entries().size(), 5u) << what;
    }
}

TEST_F(Gathering, LeavesWhatHasATreacherousNameOrIsNoFile)
{
    fs::create_directory(_folder / "src/folder.png");
    Names values = {file("src/aux.png"),
                    file("src/NUL"),
                    file("src/C:wood.png"),
                    at("src/.."),
                    at("src/."),
                    at("src/"),
                    at("src/missing.png"),
                    "relative/none.png",
                    file("src/x") + "/wood.png",
                    at("src/missing/wood.png"),
                    at("src/folder.png")};
    std::size_t told = 1;
#if defined(__linux__)
    // Whoever reads from these waits, or never comes to the end.
    ASSERT_EQ(mkfifo(at("src/pipe").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", _folder / "src/endless");
    values.insert(values.end(), {at("src/pipe"), at("src/endless")});
    told += 2;
#endif
    gather(values);
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(_inputs[i]->getValueString(), values[i]);
    EXPECT_EQ(count(DiagnosticCode::TextureNameRefused), 6u);
    EXPECT_EQ(count(DiagnosticCode::TextureNotGathered), told);
    EXPECT_EQ(_diagnostics.size(), 6 + told) << "a missing file was told of when it was read";
    EXPECT_FALSE(fs::exists(_folder / "out/M")) << "nothing to put into it";
}

TEST_F(Gathering, GivesWayToFoldersAndReplacesLinks)
{
    fs::create_directories(_folder / "out/M/wood.png/inside");
    fs::create_symlink(file("src/precious.png"), _folder / "out/M/oak.png");
    fs::create_symlink(at("src/new.png"), _folder / "out/M/dangling.png");
    fs::create_directory_symlink(at("src"), _folder / "out/M/elm.png");
    gather({file("src/a/wood.png"), file("src/a/oak.png"), file("src/a/dangling.png"),
            file("src/a/elm.png")});
    EXPECT_EQ(places(), (Names{"wood-2.png: src/a/wood.png", "oak.png: src/a/oak.png",
                               "dangling.png: src/a/dangling.png", "elm.png: src/a/elm.png"}));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(_folder / "out/M/oak.png")));
    EXPECT_TRUE(fs::is_empty(_folder / "out/M/wood.png/inside"));

    fs::remove_all(_folder / "out/M");
    _folder.write("out/M", "a file");
    EXPECT_THROW(gather({file("src/a/oak.png")}), fs::filesystem_error);
    EXPECT_EQ(readFile(_folder / "out/M"), "a file");
}

TEST_F(Gathering, TouchesOnlyWhatTheTranslationAdded)
{
    const std::string other = file("src/other.png");
    const mx::DocumentPtr document = mx::createDocument();
    document->addNode("image", "old")->setInputValue("file", other, mx::FILENAME_TYPE_STRING);
    const mx::NodePtr node = document->addNodeGraph("G")->addNode("image", "deep", "color3");
    node->setInputValue("file", file("src/deep.png"), mx::FILENAME_TYPE_STRING);
    node->setInputValue("title", other, mx::STRING_TYPE_STRING);
    gatherTextures({document, 1, "M", at("out"), {}, {_diagnostics, "asset"}});
    EXPECT_EQ(document->getNode("old")->getInputValue("file")->getValueString(), other);
    EXPECT_EQ(node->getInputValue("file")->getValueString(), at("out/M/deep.png"));
    EXPECT_EQ(node->getInputValue("title")->getValueString(), other);
    EXPECT_FALSE(fs::exists(_folder / "out/M/other.png"));
}

} // namespace

} // namespace vyr::MaterialTranslation::converter
