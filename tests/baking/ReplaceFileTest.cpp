#include "baking/ReplaceFile.h"

#include "baking/BakeError.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#if defined(__linux__)
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace vyr::MaterialTranslation::baking
{
namespace
{
using Bytes = std::vector<unsigned char>;
namespace fs = std::filesystem;

/// Files in memory, on a disk that has room for so many bytes.
class SmallDisk : public FileSystem
{
  public:
    std::size_t room = 0;
    bool lateNotice = false; ///< that there is no room shows when the file is closed
    bool renameFails = false;
    std::map<fs::path, Bytes> files;

    std::unique_ptr<NewFile> create(const fs::path& path, std::error_code& error) override
    {
        if (files.count(path) != 0)
        {
            error = std::make_error_code(std::errc::file_exists);
            return nullptr;
        }
        return std::make_unique<File>(*this, files[path]);
    }
    std::error_code rename(const fs::path& from, const fs::path& to) override
    {
        if (renameFails)
        {
            return std::make_error_code(std::errc::permission_denied);
        }
        files[to] = files.at(from);
        files.erase(from);
        return {};
    }
    void remove(const fs::path& path) override { files.erase(path); }

  private:
    class File : public NewFile
    {
      public:
        File(SmallDisk& disk, Bytes& bytes) : _disk(disk), _bytes(bytes) {}
        std::error_code write(std::span<const unsigned char> bytes) override
        {
            const std::size_t fitting = std::min(bytes.size(), _disk.room);
            _bytes.assign(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(fitting));
            _full = fitting < bytes.size();
            return _full && !_disk.lateNotice ? noRoom() : std::error_code();
        }
        std::error_code close() override
        {
            return _full && _disk.lateNotice ? noRoom() : std::error_code();
        }

      private:
        static std::error_code noRoom()
        {
            return std::make_error_code(std::errc::no_space_on_device);
        }
        SmallDisk& _disk;
        Bytes& _bytes;
        bool _full = false;
    };
};

/// \return the message of the failure, empty without one.
std::string replace(const fs::path& path, const Bytes& bytes,
                    FileSystem& files = machineFileSystem())
{
    try
    {
        replaceFile(path, bytes, files);
        return {};
    }
    catch (const BakeError& error)
    {
        return error.what();
    }
}
} // namespace

TEST(ReplaceFile, LeavesEverythingAsItWasOnAFullDisk)
{
    const Bytes bytes(300, 7);
    const std::map<fs::path, Bytes> before{{"map.png", {1, 2, 3}}, {"map.png.part0", {9}}};
    SmallDisk disk;
    for (const bool lateNotice : {false, true})
    {
        disk.lateNotice = lateNotice;
        for (disk.room = 0; disk.room < bytes.size(); ++disk.room)
        {
            disk.files = before;
            const std::string message = replace("map.png", bytes, disk);
            ASSERT_NE(message.find("map.png"), std::string::npos) << disk.room;
            ASSERT_NE(message.find("No space left"), std::string::npos) << message;
            ASSERT_EQ(disk.files, before) << disk.room;
        }
    }
    EXPECT_EQ(replace("map.png", bytes, disk), "");
    EXPECT_EQ(disk.files.at("map.png"), bytes);
    EXPECT_EQ(disk.files.size(), 2U);

    disk.files = before;
    disk.renameFails = true;
    EXPECT_NE(replace("map.png", bytes, disk), "");
    EXPECT_EQ(disk.files, before);
}

TEST(ReplaceFile, WorksOnTheMachinesFiles)
{
    const support::TemporaryFolder folder;
    folder.write("old.bin", "old");
    EXPECT_EQ(replace(folder / "old.bin", {'n', 'e', 'w'}), "");
    EXPECT_EQ(support::readFile(folder / "old.bin"), "new");
    fs::create_directory(folder / "folder.png");
    folder.write("folder.png/file", "");
    EXPECT_NE(replace(folder / "folder.png", {1}), "");
    EXPECT_NE(replace(folder / "missing" / "a.png", {1}).find("No such file"), std::string::npos);
    EXPECT_EQ(folder.entries().size(), 3U);
}

#if defined(__linux__)
namespace
{
enum Outcome : int
{
    kGood,
    kMayNotMount,
    kNotReported,
    kFileLeft,
};

/// In a process of its own, on a file system of its own of one megabyte.
int fillSmallDisk(const fs::path& folder)
{
    if ((geteuid() == 0 ? unshare(CLONE_NEWNS) : unshare(CLONE_NEWUSER | CLONE_NEWNS)) != 0 ||
        mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=1m") != 0)
    {
        return kMayNotMount;
    }
    const std::string message = replace(folder / "map.png", Bytes(2U << 20));
    if (message.find("No space left") == std::string::npos)
    {
        return kNotReported;
    }
    return fs::is_empty(folder) ? kGood : kFileLeft;
}
} // namespace

TEST(ReplaceFile, ReportsAFullDisk)
{
    const support::TemporaryFolder folder;
    const pid_t child = fork();
    if (child == 0)
    {
        _exit(fillSmallDisk(folder.path()));
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == kMayNotMount)
    {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    EXPECT_EQ(WEXITSTATUS(status), kGood);
}
#endif
} // namespace vyr::MaterialTranslation::baking
