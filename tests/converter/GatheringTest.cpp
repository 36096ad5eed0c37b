#include "converter/TextureGathering.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "core/ReplaceFile.h"
#include "support/TemporaryFolder.h"

#if defined(__linux__)
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
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
    if (fs::exists(folder))
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
    Gathering() : _document(mx::createDocument())
    {
        fs::create_directory(_folder / "out");
        fs::create_directory(_folder / "src");
    }

    void TearDown() override { EXPECT_EQ(snapshot(_folder / "src"), _users); }

    /// The text of a path below the test's folder.
    std::string at(const std::string& path) const { return TemporaryFolder::utf8(_folder / path); }

    /// Makes a file that holds its own name.
    std::string file(const std::string& path)
    {
        _folder.write(path, path);
        _users = snapshot(_folder / "src");
        return at(path);
    }

    mx::InputPtr refer(const std::string& value)
    {
        const mx::NodePtr node = _document->addNode("image", mx::EMPTY_STRING, "color3");
        const mx::InputPtr input = node->addInput("file", mx::FILENAME_TYPE_STRING);
        input->setValueString(value);
        _inputs.push_back(input);
        return input;
    }

    void gather(const std::vector<fs::path>& baked = {}, const std::string& name = "M")
    {
        _diagnostics.clear();
        gatherTextures({_document, _firstChild, name, at("out"), baked, {_diagnostics, "asset"}});
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
    std::size_t _firstChild = 0;
    std::vector<mx::InputPtr> _inputs;
    std::vector<Diagnostic> _diagnostics;

  private:
    std::map<std::string, std::pair<std::string, fs::file_time_type>> _users;
};

TEST_F(Gathering, CopiesAFileOnceForAllItsInputs)
{
    const std::string wood = file("src/wood.png");
    fs::create_symlink(wood, _folder / "src/link.png");
    fs::create_hard_link(wood, _folder / "src/hard.png");
    file("src/other.png");
    for (const std::string& path : {wood, wood, at("src/../src/wood.png"), at("src//wood.png"),
                                    at("src/link.png"), at("src/hard.png")})
        refer(path);
    gather();
    EXPECT_EQ(places(), Names(6, "wood.png: src/wood.png"));
    EXPECT_EQ(_folder.entries(), (Names{"out", "out/M", "out/M/wood.png", "src", "src/hard.png",
                                        "src/link.png", "src/other.png", "src/wood.png"}));
    EXPECT_TRUE(_diagnostics.empty());
    EXPECT_EQ(fs::last_write_time(_folder / "out/M/wood.png"), fs::last_write_time(wood));
}

TEST_F(Gathering, KeepsDifferentFilesOfOneNameApart)
{
    for (const char* path : {"src/a/wood.png", "src/b/wood.png", "src/c/WOOD.png",
                             "src/d/wood-2.png", "src/e/wo?od.png", "src/f/wo_od.png",
                             "src/g/\xC3\x96l.png", "src/h/\xC3\xB6l.png", "src/i/back\\wood.png"})
        refer(file(path));
    gather();
    EXPECT_EQ(places(),
              (Names{"wood.png: src/a/wood.png", "wood-2.png: src/b/wood.png",
                     "WOOD-3.png: src/c/WOOD.png", "wood-2-2.png: src/d/wood-2.png",
                     "wo_od.png: src/e/wo?od.png", "wo_od-2.png: src/f/wo_od.png",
                     "\xC3\x96l.png: src/g/\xC3\x96l.png", "\xC3\xB6l-2.png: src/h/\xC3\xB6l.png",
                     "wood-4.png: src/i/back\\wood.png"}));
    EXPECT_EQ(count(DiagnosticCode::TextureRenamed), 7u);
}

/// Files of the user's that are in the material's folder already: each stays what it is.
TEST_F(Gathering, LeavesFilesInTheFolderAlone)
{
    Names paths;
    for (const char* path : {"out/M/wood.png", "out/M/Wood.png", "out/M/wood-2.png",
                             "out/M/a?b.png", "out/M/a_b.png", "out/M/x y%20.png"})
        paths.push_back(file(path));
    paths.push_back(file("src/wood.png"));
    paths.push_back(file("src/X Y%20.png"));
    const auto before = snapshot(_folder / "out");
    std::sort(paths.begin(), paths.end());
    do
    {
        _document = mx::createDocument();
        _inputs.clear();
        for (const std::string& path : paths)
            refer(path);
        gather();
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
    } while (!std::is_sorted(paths.begin(), paths.end()));
}

TEST_F(Gathering, MovesOnlyItsOwnFilesAndLetsUsersHaveTheName)
{
    const fs::path mine = file("out/M/wood_normalmap.png");
    const fs::path mineToo = file("out/M/wood_normalmap-2.png");
    refer(mine.string());
    refer(file("src/Wood_NormalMap.png"));
    refer(mineToo.string());
    refer(mine.string());
    gather({mine, mineToo});
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
    const struct
    {
        const char* what;
        std::string content;
        fs::file_time_type time;
        bool copied;
    } cases[] = {
        {"the copy itself", "src/wood.png", time, false},
        {"another image of that size and time", "SRC/WOOD.PNG", time, true},
        {"newer", "SRC/WOOD.PNG", time + 1h, false},
        {"older", "SRC/WOOD.PNG", time - 1h, true},
        {"newer and shorter", "SRC", time + 1h, true},
        {"newer and longer", "SRC/WOOD.PNG, and more", time + 1h, true},
        {"newer and empty", "", time + 1h, true},
    };
    for (const auto& one : cases)
    {
        _folder.write("out/M/wood.png", one.content);
        fs::last_write_time(copy, one.time);
        fs::permissions(copy, fs::perms::owner_read | fs::perms::group_read);
        _document = mx::createDocument();
        _inputs.clear();
        refer(source.string());
        gather();
        EXPECT_EQ(readFile(copy), one.copied ? "src/wood.png" : one.content) << one.what;
        EXPECT_EQ(fs::last_write_time(copy), one.copied ? time : one.time) << one.what;
        EXPECT_EQ(_inputs[0]->getValueString(), at("out/M/wood.png")) << one.what;
        EXPECT_EQ(_folder.entries().size(), 5u) << one.what;
    }
}

TEST_F(Gathering, RefusesNamesThatReachElsewhere)
{
    const Names values = {file("src/aux.png"), file("src/NUL"), file("src/C:wood.png"),
                          at("src/.."),        at("src/."),     at("src/")};
    for (const std::string& value : values)
        refer(value);
    gather();
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(_inputs[i]->getValueString(), values[i]);
    EXPECT_EQ(count(DiagnosticCode::TextureNameRefused), values.size());
    EXPECT_FALSE(fs::exists(_folder / "out/M")) << "nothing to put into it";
}

TEST_F(Gathering, LeavesWhatIsNoFile)
{
    fs::create_directory(_folder / "src/folder.png");
    Names values = {at("src/missing.png"), at("src/folder.png"), "relative/missing.png",
                    at("src/missing/wood.png"), file("src/file") + "/wood.png"};
    std::size_t told = 1;
#if defined(__linux__)
    // Whoever reads from these waits, or never comes to the end.
    ASSERT_EQ(mkfifo(at("src/pipe").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", _folder / "src/endless");
    values.insert(values.end(), {at("src/pipe"), at("src/endless")});
    told += 2;
#endif
    for (const std::string& value : values)
        refer(value);
    gather();
    for (std::size_t i = 0; i < values.size(); ++i)
        EXPECT_EQ(_inputs[i]->getValueString(), values[i]);
    EXPECT_EQ(count(DiagnosticCode::TextureNotGathered), told);
    EXPECT_EQ(_diagnostics.size(), told) << "a missing file was told of when it was read";
    EXPECT_FALSE(fs::exists(_folder / "out/M"));
}

TEST_F(Gathering, GivesWayToFoldersAndReplacesLinks)
{
    fs::create_directories(_folder / "out/M/wood.png/inside");
    fs::create_symlink(file("src/precious.png"), _folder / "out/M/oak.png");
    fs::create_symlink(at("src/new.png"), _folder / "out/M/dangling.png");
    fs::create_directory_symlink(at("src"), _folder / "out/M/elm.png");
    for (const char* name : {"wood.png", "oak.png", "dangling.png", "elm.png"})
        refer(file(std::string("src/a/") + name));
    gather();
    EXPECT_EQ(places(), (Names{"wood-2.png: src/a/wood.png", "oak.png: src/a/oak.png",
                               "dangling.png: src/a/dangling.png", "elm.png: src/a/elm.png"}));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(_folder / "out/M/oak.png")));
    EXPECT_FALSE(fs::exists(_folder / "src/new.png"));
    EXPECT_TRUE(fs::is_empty(_folder / "out/M/wood.png/inside"));
}

TEST_F(Gathering, DoesNotLeaveTheOutputFolder)
{
    const std::string wood = file("src/wood.png");
    fs::create_directory(_folder / "src/elsewhere");
    fs::create_directory_symlink(at("src/elsewhere"), _folder / "out/M");
    refer(wood);
    EXPECT_THROW(gather(), fs::filesystem_error);
    EXPECT_EQ(_inputs[0]->getValueString(), wood);
    EXPECT_TRUE(fs::is_empty(_folder / "src/elsewhere"));

    fs::remove(_folder / "out/M");
    _folder.write("out/M", "a file");
    EXPECT_THROW(gather(), fs::filesystem_error);
    EXPECT_EQ(readFile(_folder / "out/M"), "a file");
}

TEST_F(Gathering, KeepsTextsAsTheyAre)
{
    for (const char* path :
         {"src/100%.png", "src/a%20b.png", "src/a b+c#1&.png", "src/%2e%2e",
          "src/\xE6\x9C\xA8 \xF0\x9F\xAA\xB5.png", "src/[x]{y}$HOME~;'`.png", "src/-rf"})
        refer(file(path));
    gather();
    for (std::size_t i = 0; i < _inputs.size(); ++i)
    {
        const std::string place = places()[i];
        const std::size_t colon = place.find(": ");
        EXPECT_EQ("src/" + place.substr(0, colon), place.substr(colon + 2));
    }
    EXPECT_TRUE(_diagnostics.empty());
}

TEST_F(Gathering, TouchesOnlyWhatTheTranslationAdded)
{
    const std::string other = file("src/other.png");
    refer(other);
    _firstChild = 1;
    const mx::NodeGraphPtr graph = _document->addNodeGraph("G");
    const mx::NodePtr node = graph->addNode("image", "deep", "color3");
    node->setInputValue("file", file("src/deep.png"), mx::FILENAME_TYPE_STRING);
    node->setInputValue("title", other, mx::STRING_TYPE_STRING);
    gather();
    EXPECT_EQ(_inputs[0]->getValueString(), other);
    EXPECT_EQ(node->getInputValue("file")->getValueString(), at("out/M/deep.png"));
    EXPECT_EQ(node->getInputValue("title")->getValueString(), other);
    EXPECT_FALSE(fs::exists(_folder / "out/M/other.png"));
}

/// What a killed run left behind is taken over.
TEST_F(Gathering, EndsLikeAnUndisturbedRun)
{
    refer(file("src/wood.png"));
    gather();
    const Names undisturbed = _folder.entries();
    _folder.write("out/M/wood.png", "half");
    _folder.write(core::temporaryBeside(_folder / "out/M/wood.png"), std::string(100000, 'x'));
    _document = mx::createDocument();
    _inputs.clear();
    refer(at("src/wood.png"));
    gather();
    EXPECT_EQ(_folder.entries(), undisturbed);
    EXPECT_EQ(places(), Names{"wood.png: src/wood.png"});
}

#if defined(__linux__)

/// In a process of its own, where the folder is read-only.
template <class Act> int onReadOnlyFolder(const fs::path& folder, const Act& act)
{
    const pid_t child = fork();
    if (child == 0)
    {
        const char* path = folder.c_str();
        constexpr unsigned long remount = MS_REMOUNT | MS_BIND | MS_RDONLY;
        if ((geteuid() == 0 ? unshare(CLONE_NEWNS) : unshare(CLONE_NEWUSER | CLONE_NEWNS)) != 0 ||
            mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount(path, path, nullptr, MS_BIND, nullptr) != 0 ||
            mount(nullptr, path, nullptr, remount, nullptr) != 0)
            _exit(2);
        _exit(act() ? 0 : 1);
    }
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

TEST_F(Gathering, SaysThatTheFolderIsReadOnly)
{
    const std::string wood = file("src/wood.png");
    refer(wood);
    const auto failsAsItShould = [&](const char* operation)
    {
        try
        {
            gather();
        }
        catch (const fs::filesystem_error& error)
        {
            return std::string(error.what()).find(operation) != std::string::npos &&
                   _inputs[0]->getValueString() == wood;
        }
        return false;
    };
    const int outcome =
        onReadOnlyFolder(_folder / "out", [&] { return failsAsItShould("create_directory"); });
    if (outcome == 2)
        GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(outcome, 0);
    fs::create_directory(_folder / "out/M");
    EXPECT_EQ(onReadOnlyFolder(_folder / "out", [&] { return failsAsItShould("copy_file"); }), 0);
    EXPECT_EQ(_folder.entries().size(), 4u);

    // What is there and up to date needs no writing.
    gather();
    _inputs[0]->setValueString(wood);
    const auto succeeds = [&]
    {
        gather();
        return _inputs[0]->getValueString() == at("out/M/wood.png");
    };
    EXPECT_EQ(onReadOnlyFolder(_folder / "out", succeeds), 0);
}

#endif

} // namespace

} // namespace vyr::MaterialTranslation::converter
