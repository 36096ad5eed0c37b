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

/// Files in memory, on a disk that has room for so many bytes.
class SmallDisk : public FileSystem
{
  public:
    std::size_t room = 0;
    bool lateNotice = false; ///< that there is no room shows when the file is closed
    bool renameFails = false;
    std::map<fs::path, std::string> files;
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

TEST(ReplaceFile, LeavesEverythingAsItWasOnAFullDisk)
{
    const std::string piece(100, 'x');
    const Content pieces = [&](NewFile& file)
    {
        for (int i = 0; i < 3; ++i)
            if (const auto error = file.write(piece))
                return error;
        return std::error_code();
    };
    const std::map<fs::path, std::string> before{{"map.png", "old"}, {"other", "mine"}};
    SmallDisk disk;
    for (const bool lateNotice : {false, true})
    {
        disk.lateNotice = lateNotice;
        for (disk.room = 0; disk.room < 300; ++disk.room)
        {
            disk.files = before;
            ASSERT_EQ(replaceFile("map.png", pieces, {}, disk), std::errc::no_space_on_device);
            ASSERT_EQ(disk.files, before) << disk.room;
        }
        EXPECT_FALSE(replaceFile("map.png", pieces, {}, disk));
        EXPECT_EQ(disk.files.at("map.png"), piece + piece + piece);
        EXPECT_EQ(disk.files.size(), 2u);
    }
    disk.files = before;
    disk.renameFails = true;
    EXPECT_TRUE(replaceFile("map.png", pieces, {}, disk));
    EXPECT_EQ(disk.files, before);
}

TEST(ReplaceFile, TouchesTheFileOnlyWhenItIsWhole)
{
    SmallDisk disk;
    disk.room = 3;
    const Content content = [](NewFile& file) { return file.write("1234"); };
    std::string seen = "nothing";
    const auto touch = [&](const fs::path& path) { seen = disk.files.at(path); };
    EXPECT_TRUE(replaceFile("a", content, touch, disk));
    EXPECT_EQ(seen, "nothing");
    disk.room = 4;
    EXPECT_FALSE(replaceFile("a", content, touch, disk));
    EXPECT_EQ(seen, "1234");
}

TEST(ReplaceFile, TakesOverWhatWasLeftBehindAndKeepsClearOfOtherWriters)
{
    const Content content = [](NewFile& file) { return file.write("new"); };
    SmallDisk disk;
    disk.room = 10;
    disk.files = {{temporaryBeside("f/a.png"), "left behind, and longer"}};
    EXPECT_FALSE(replaceFile("f/a.png", content, {}, disk));
    EXPECT_EQ(disk.files, (std::map<fs::path, std::string>{{"f/a.png", "new"}}));

    disk.busy = {temporaryBeside("f/a.png"), temporaryBeside("f/a.png", 1)};
    disk.files.clear();
    EXPECT_FALSE(replaceFile("f/a.png", content, {}, disk));
    EXPECT_EQ(disk.files.size(), 1u);
    for (int attempt = 0; attempt < 1000; ++attempt)
        disk.busy.push_back(temporaryBeside("f/a.png", attempt));
    EXPECT_EQ(replaceFile("f/a.png", content, {}, disk), std::errc::device_or_resource_busy);
    EXPECT_EQ(disk.files.size(), 1u);
}

TEST(TemporaryNames, AreShortApartAndBesideTheFile)
{
    const fs::path longName(std::string(255, 'x'));
    EXPECT_LT(temporaryBeside(longName).filename().string().size(), 40u);
    EXPECT_EQ(temporaryBeside("a/b.png").parent_path(), "a");
    EXPECT_EQ(temporaryBeside("a/b.png"), temporaryBeside("a/b.png", 0)) << "the same in every run";
    EXPECT_NE(temporaryBeside("a/b.png"), temporaryBeside("a/b.png", 1));
    EXPECT_NE(temporaryBeside("a/b.png"), temporaryBeside("a/c.png"));
}

class MachineFiles : public ::testing::Test
{
  protected:
    TemporaryFolder _folder;
};

TEST_F(MachineFiles, AreReplacedWhole)
{
    const fs::path file = _folder.write("a.txt", "old and longer");
    _folder.write(temporaryBeside("a.txt"), "left behind by a killed run, and much longer");
    writeFileAtomically(file, "new");
    EXPECT_EQ(readFile(file), "new");
    writeFileAtomically(file, "");
    EXPECT_EQ(readFile(file), "");
    EXPECT_EQ(_folder.entries().size(), 1u);

    fs::create_directory(_folder / "folder");
    _folder.write("folder/inside", "mine");
    EXPECT_THROW(writeFileAtomically(_folder / "folder", "x"), fs::filesystem_error);
    EXPECT_THROW(writeFileAtomically(_folder / "missing" / "a", "x"), fs::filesystem_error);
    EXPECT_EQ(_folder.entries(), (std::vector<std::string>{"a.txt", "folder", "folder/inside"}));
}

TEST_F(MachineFiles, HaveOneWriterATime)
{
    std::error_code error;
    FileSystem& files = machineFileSystem();
    const fs::path path = _folder / "t";
    {
        const auto first = files.create(path, error);
        ASSERT_TRUE(first);
        EXPECT_FALSE(first->write("first"));
        EXPECT_FALSE(files.create(path, error));
        EXPECT_EQ(error, std::errc::device_or_resource_busy);
        EXPECT_EQ(readFile(path), "first") << "emptied by one who may not write it";
        EXPECT_FALSE(first->close());
        EXPECT_FALSE(files.create(path, error)) << "it has not got its name yet";
    }
    EXPECT_TRUE(files.create(path, error));

    // A writer within a writer stands for another process at the worst moment.
    const Content inner = [](NewFile& file) { return file.write("inner"); };
    const Content outer = [&](NewFile& file)
    {
        EXPECT_FALSE(replaceFile(_folder / "a", inner));
        EXPECT_EQ(readFile(_folder / "a"), "inner");
        return file.write("outer");
    };
    EXPECT_FALSE(replaceFile(_folder / "a", outer));
    EXPECT_EQ(readFile(_folder / "a"), "outer");
    EXPECT_EQ(_folder.entries().size(), 2u);
}

TEST_F(MachineFiles, AreNotWrittenThroughSymbolicLinks)
{
    const fs::path mine = _folder.write("mine", "mine");
    fs::create_symlink(mine, _folder / "a");
    writeFileAtomically(_folder / "a", "new");
    EXPECT_EQ(readFile(mine), "mine");
    EXPECT_FALSE(fs::is_symlink(_folder / "a"));

    fs::create_symlink(mine, temporaryBeside(_folder / "b"));
    EXPECT_THROW(writeFileAtomically(_folder / "b", "new"), fs::filesystem_error);
    EXPECT_EQ(readFile(mine), "mine");
    EXPECT_FALSE(fs::exists(_folder / "b"));
}

TEST_F(MachineFiles, AreCopiedWithTheirTime)
{
    using namespace std::chrono_literals;
    constexpr std::size_t piece = std::size_t{1} << 20;
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, piece - 1, piece, piece + 1, 3 * piece})
    {
        std::string content(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            content[i] = static_cast<char>(i * 31 + i / 251);
        const fs::path from = _folder.write("from", content);
        fs::last_write_time(from, fs::last_write_time(from) - 1h);
        ASSERT_FALSE(copyFileAtomically(from, _folder / "to")) << size;
        EXPECT_TRUE(readFile(_folder / "to") == content) << size;
        EXPECT_EQ(fs::last_write_time(_folder / "to"), fs::last_write_time(from));
    }
    fs::permissions(_folder / "from", fs::perms::owner_read);
    ASSERT_FALSE(copyFileAtomically(_folder / "from", _folder / "to"));
    EXPECT_NE(fs::status(_folder / "to").permissions() & fs::perms::owner_write, fs::perms::none)
        << "a copy that nobody can replace";

    EXPECT_TRUE(copyFileAtomically(_folder / "missing", _folder / "new"));
    EXPECT_TRUE(copyFileAtomically(_folder.path(), _folder / "new")) << "a folder";
    EXPECT_FALSE(fs::exists(_folder / "new"));
    EXPECT_EQ(_folder.entries().size(), 2u);
}

#if defined(__linux__)

enum Outcome : int
{
    Good,
    MayNotMount,
    NotReported,
    FileLeft,
};

/// In a process of its own, on a file system of its own of one megabyte.
int fillSmallDisk(const fs::path& disk, const fs::path& large)
{
    if ((geteuid() == 0 ? unshare(CLONE_NEWNS) : unshare(CLONE_NEWUSER | CLONE_NEWNS)) != 0 ||
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=1m") != 0)
        return MayNotMount;
    const Content content = [](NewFile& file) { return file.write(std::string(2U << 20, 'x')); };
    if (replaceFile(disk / "written", content) != std::errc::no_space_on_device ||
        copyFileAtomically(large, disk / "copied") != std::errc::no_space_on_device)
        return NotReported;
    return fs::is_empty(disk) ? Good : FileLeft;
}

TEST_F(MachineFiles, OfAFullDiskAreReportedAndRemoved)
{
    const fs::path disk = _folder / "disk";
    fs::create_directory(disk);
    const fs::path large = _folder.write("large", std::string(3U << 20, 'y'));
    const pid_t child = fork();
    if (child == 0)
        _exit(fillSmallDisk(disk, large));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == MayNotMount)
        GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(WEXITSTATUS(status), Good);
}

#endif

} // namespace

} // namespace vyr::MaterialTranslation::core
