#include "baking/ReplaceFile.h"

#include "baking/BakeError.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>

namespace vyr::MaterialTranslation::baking
{
namespace
{
std::error_code lastError()
{
    return {errno != 0 ? errno : EIO, std::generic_category()};
}

class MachineFile : public NewFile
{
  public:
    explicit MachineFile(std::FILE* file) : _file(file) {}
    ~MachineFile() override
    {
        if (_file != nullptr)
        {
            std::fclose(_file);
        }
    }
    MachineFile(const MachineFile&) = delete;
    MachineFile& operator=(const MachineFile&) = delete;

    std::error_code write(std::span<const unsigned char> bytes) override
    {
        errno = 0;
        const bool whole = std::fwrite(bytes.data(), 1, bytes.size(), _file) == bytes.size();
        return whole ? std::error_code() : lastError();
    }

    std::error_code close() override
    {
        errno = 0;
        const std::error_code flushed = std::fflush(_file) == 0 ? std::error_code() : lastError();
        errno = 0;
        const bool closed = std::fclose(_file) == 0;
        _file = nullptr;
        return flushed || closed ? flushed : lastError();
    }

  private:
    std::FILE* _file;
};

class MachineFileSystem : public FileSystem
{
  public:
    std::unique_ptr<NewFile> create(const std::filesystem::path& path,
                                    std::error_code& error) override
    {
        errno = 0;
#if defined(_WIN32)
        std::FILE* file = _wfopen(path.c_str(), L"wbx");
#else
        std::FILE* file = std::fopen(path.c_str(), "wbx");
#endif
        if (file == nullptr)
        {
            error = lastError();
            return nullptr;
        }
        return std::make_unique<MachineFile>(file);
    }

    std::error_code rename(const std::filesystem::path& from,
                           const std::filesystem::path& to) override
    {
        std::error_code error;
        std::filesystem::rename(from, to, error);
        return error;
    }

    void remove(const std::filesystem::path& path) override
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
};

struct TemporaryFile
{
    std::filesystem::path path;
    std::unique_ptr<NewFile> file;
};

/// Files of other bakes, or left behind by a crash, are in nobody's way.
TemporaryFile createBeside(const std::filesystem::path& destination, FileSystem& files)
{
    constexpr int kMostAttempts = 1000;
    std::error_code error;
    for (int i = 0; i < kMostAttempts; ++i)
    {
        std::filesystem::path path = destination;
        path += fmt::format(".part{}", i);
        if (auto file = files.create(path, error))
        {
            return {std::move(path), std::move(file)};
        }
        if (error != std::errc::file_exists)
        {
            break;
        }
    }
    throw BakeError(fmt::format("{}: cannot be written: {}", utf8(destination), error.message()));
}
} // namespace

FileSystem& machineFileSystem()
{
    static MachineFileSystem files;
    return files;
}

void replaceFile(const std::filesystem::path& destination, std::span<const unsigned char> bytes,
                 FileSystem& files)
{
    TemporaryFile temporary = createBeside(destination, files);
    std::error_code error = temporary.file->write(bytes);
    if (const std::error_code closed = temporary.file->close(); !error)
    {
        error = closed;
    }
    if (!error)
    {
        error = files.rename(temporary.path, destination);
    }
    if (error)
    {
        files.remove(temporary.path);
        throw BakeError(
            fmt::format("{}: cannot be written: {}", utf8(destination), error.message()));
    }
}
} // namespace vyr::MaterialTranslation::baking
