#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <span>
#include <system_error>

namespace vyr::MaterialTranslation::baking
{
/// A file that did not exist before and is being written.
class NewFile
{
  public:
    virtual ~NewFile() = default;
    virtual std::error_code write(std::span<const unsigned char> bytes) = 0;
    /// Hands everything to the system, which may only now notice that it has no room.
    virtual std::error_code close() = 0;
};

/// What replaceFile needs of a file system, so that its failures can be played through.
class FileSystem
{
  public:
    virtual ~FileSystem() = default;
    /// \return null with `error` set when the file exists or cannot be made.
    virtual std::unique_ptr<NewFile> create(const std::filesystem::path& path,
                                            std::error_code& error) = 0;
    virtual std::error_code rename(const std::filesystem::path& from,
                                   const std::filesystem::path& to) = 0;
    virtual void remove(const std::filesystem::path& path) = 0;
};

/// The file system of the machine.
FileSystem& machineFileSystem();

/// Makes `destination` a file of these bytes, or leaves everything as it was: the bytes go to a new file beside
/// it, whose name is the destination's followed by ".part" and a number, which is then renamed.
///
/// \throws BakeError with the system's reason.
void replaceFile(const std::filesystem::path& destination, std::span<const unsigned char> bytes,
                 FileSystem& files = machineFileSystem());
} // namespace vyr::MaterialTranslation::baking
