#include "core/ReplaceFile.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

#if defined(__linux__)
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace vyr::MaterialTranslation::core
{

namespace
{

namespace fs = std::filesystem;

using support::readFile;
using support::TemporaryFolder;
using Files = std::map<fs::path, std::string>;

Content writing(const std::string& bytes)
{
    return [bytes](NewFile& file) { return file.write(bytes); };
}

/// Files in memory, on a disk that has room for so many bytes.
class SmallDisk : public FileSystem
{
  public:
    std::size_t room = 1000;
    bool lateNotice = false; ///< that there is no room shows when the file is closed
    bool renameFails = false;
    Files files;
    std::vector<fs::path> busy; ///< others are writing these

    std::unique_ptr<NewFile> create(const fs::path& path, std::error_code& error) override
    {
        if (std::count(busy.begin(), busy.end(), path) != 0)
        {
            error = std::make_error_code(std::errc::device_or_resource_busy);
            return nullptr;
        }
        files[path].clear();
        return std::make_unique<File>(*this, files[path]);
    }
    std::error_code rename(const fs::path& from, const fs::path& to) override
    {
        if (renameFails)
            return std::make_error_code(std::errc::permission_denied);
        files[to] = files.at(from);
        files.erase(from);
        return {};
    }
    void remove(const fs::path& path) override { files.erase(path); }

  private:
    class File : public NewFile
    {
      public:
        File(SmallDisk& disk, std::string& content) : _disk(disk), _content(content) {}
        std::error_code write(std::string_view bytes) override
        {
            const std::size_t fitting = std::min(bytes.size(), _disk.room - _content.size());
            _content += bytes.substr(0, fitting);
            _full = _full || fitting < bytes.size();
            return noRoom(_full && !_disk.lateNotice);
        }
        std::error_code close() override { return noRoom(_full && _disk.lateNotice); }

      private:
        static std::error_code noRoom(bool full)
        {
            return full ? std::make_error_code(std::errc::no_space_on_device) : std::error_code();
        }
        SmallDisk& _disk;
        std::string& _content;
        bool _full = false;
    };
};

TEST(ReplaceFile, LeavesEverythingAsItWasWhicheverByteFails)
{
    const std::string piece(50, 'x');
    const Content pieces = [&](NewFile& file)
    {
        const std::error_code error = file.write(piece);
        return error ? error : file.write(piece);
    };
    const Files before{{"map.png", "old"}, {"other", "mine"}};
    SmallDisk disk;
    const auto replace = [&]
    {
        disk.files = before;
        const auto touch = [&](const fs::path& path)
        { EXPECT_EQ(disk.files.at(path), piece + piece) << "touched before it was whole"; };
        return replaceFile("map.png", pieces, touch, disk);
    };
    for (const bool lateNotice : {false, true})
    {
        disk.lateNotice = lateNotice;
        for (disk.room = 0; disk.room < 100; ++disk.room)
        {
            ASSERT_EQ(replace(), std::errc::no_space_on_device);
            ASSERT_EQ(disk.files, before) << disk.room;
        }
        EXPECT_FALSE(replace());
        EXPECT_EQ(disk.files, (Files{{"map.png", piece + piece}, {"other", "mine"}}));
    }
    disk.renameFails = true;
    EXPECT_TRUE(replace());
    EXPECT_EQ(disk.files, before);
}

TEST(ReplaceFile, TakesOverWhatWasLeftBehindAndKeepsClearOfOtherWriters)
{
    SmallDisk disk;
    disk.files = {{temporaryBeside("f/a.png"), "left behind, and longer"}};
    EXPECT_FALSE(replaceFile("f/a.png", writing("new"), {}, disk));
    EXPECT_EQ(disk.files, (Files{{"f/a.png", "new"}}));

    disk.busy = {temporaryBeside("f/a.png"), temporaryBeside("f/a.png", 1)};
    EXPECT_FALSE(replaceFile("f/a.png", writing("newer"), {}, disk));
    for (int attempt = 2; attempt < 1000; ++attempt)
        disk.busy.push_back(temporaryBeside("f/a.png", attempt));
    EXPECT_EQ(replaceFile("f/a.png", writing("x"), {}, disk), std::errc::device_or_resource_busy);
    EXPECT_EQ(disk.files, (Files{{"f/a.png", "newer"}}));
}

class MachineFiles : public ::testing::Test
{
  protected:
    TemporaryFolder _folder;
};

TEST_F(MachineFiles, AreReplacedButFoldersAndLinksTargetsAreNot)
{
    const fs::path mine = _folder.write("folder/mine", "mine");
    _folder.write(temporaryBeside("a"), "left behind by a killed run, and much longer");
    _folder.write("a", "old and longer");
    fs::create_symlink(mine, _folder / "link");
    fs::create_symlink("nowhere", _folder / "dangling");
    fs::create_hard_link(mine, temporaryBeside(_folder / "link"));
    for (const char* name : {"a", "link", "dangling", "new"})
    {
        writeFileAtomically(_folder / name, "new");
        EXPECT_EQ(readFile(_folder / name), "new");
        EXPECT_EQ(fs::symlink_status(_folder / name).type(), fs::file_type::regular);
        EXPECT_EQ(fs::status(_folder / name).permissions(), fs::status(mine).permissions());
    }
    for (const char* name : {"folder", "missing/a"})
        EXPECT_THROW(writeFileAtomically(_folder / name, "x"), fs::filesystem_error) << name;
    fs::create_symlink(mine, temporaryBeside(_folder / "b"));
    EXPECT_TRUE(replaceFile(_folder / "b", writing("x")));
    fs::remove(temporaryBeside(_folder / "b"));
    fs::create_symlink("/proc/self/fd/1", _folder / "stdout");
    EXPECT_THROW(writeFileAtomically(_folder / "stdout", "x"), fs::filesystem_error);
    for (const fs::path& kept : {temporaryBeside(_folder / "link"), _folder / "stdout"})
        EXPECT_TRUE(fs::remove(kept)) << kept;
    EXPECT_EQ(readFile(mine), "mine");
    EXPECT_EQ(_folder.entries(),
              (std::vector<std::string>{"a", "dangling", "folder", "folder/mine", "link", "new"}));
}

/// A writer within a writer stands for another process at the worst moment.
TEST_F(MachineFiles, HaveOneWriterATime)
{
    const fs::path path = _folder / "a";
    const auto inner = [&](const fs::path&)
    {
        EXPECT_FALSE(replaceFile(path, writing("inner")));
        EXPECT_EQ(readFile(path), "inner");
    };
    const Content outer = [&](NewFile& file)
    {
        EXPECT_FALSE(file.write("ou"));
        inner(path);
        return file.write("ter");
    };
    EXPECT_FALSE(replaceFile(path, outer, inner));
    EXPECT_EQ(readFile(path), "outer");
    EXPECT_EQ(_folder.entries().size(), 1u);
}

TEST_F(MachineFiles, AreCopiedWithTheirTime)
{
    constexpr std::size_t piece = std::size_t{1} << 20;
    for (const std::size_t size : {std::size_t{0}, piece - 1, piece, 2 * piece + 1})
    {
        std::string content(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            content[i] = static_cast<char>(i * 31 + i / 251);
        const fs::path from = _folder.write("from", content);
        fs::last_write_time(from, fs::last_write_time(from) - std::chrono::hours(1));
        ASSERT_FALSE(copyFileAtomically(from, _folder / "to")) << size;
        EXPECT_TRUE(readFile(_folder / "to") == content) << size;
        EXPECT_EQ(fs::last_write_time(_folder / "to"), fs::last_write_time(from));
    }
    fs::permissions(_folder / "from", fs::perms::owner_read);
    ASSERT_FALSE(copyFileAtomically(_folder / "from", _folder / "to"));
    EXPECT_NE(fs::status(_folder / "to").permissions() & fs::perms::owner_write, fs::perms::none)
        << "a copy that nobody can replace";
    for (const fs::path& none : {_folder / "missing", _folder.path()})
        EXPECT_TRUE(copyFileAtomically(none, _folder / "new")) << none;
    EXPECT_EQ(_folder.entries().size(), 2u);
}

#if defined(__linux__)

TEST_F(MachineFiles, OfAFullDiskAreReportedAndRemoved)
{
    const std::string bytes(3U << 20, 'y');
    const fs::path large = _folder.write("large", bytes);
    const fs::path disk = _folder / "disk";
    fs::create_directory(disk);
    constexpr int mayNotMount = 77;
    const pid_t child = fork();
    if (child == 0)
    {
        // Its mounts are nobody else's.
        const int own = geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS;
        if (unshare(own) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=1m") != 0)
            _exit(mayNotMount);
        const auto full = std::errc::no_space_on_device;
        const auto writeNew = [&]
        {
            try
            {
                writeFileAtomically(disk / "c", bytes);
            }
            catch (const fs::filesystem_error& error)
            {
                return error.code();
            }
            return std::error_code();
        };
        _exit((replaceFile(disk / "a", writing(bytes)) == full ? 0 : 1) +
              (copyFileAtomically(large, disk / "b") == full ? 0 : 2) +
              (writeNew() == full ? 0 : 4) + (fs::is_empty(disk) ? 0 : 8));
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == mayNotMount)
        GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(status, 0);
}

#endif

} // namespace

} // namespace vyr::MaterialTranslation::core
