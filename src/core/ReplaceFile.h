#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>
#include <system_error>

namespace vyr::MaterialTranslation::core
{

/// A file that is being written and that no other process writes.
class NewFile
{
  public:
    virtual ~NewFile() = default;
    virtual std::error_code write(std::string_view bytes) = 0;
    /// Writes the content of another file, by the system's own means where it has some.
    virtual std::error_code copyFrom(const std::filesystem::path& file);
    /// Hands everything to the system, which may only now notice that it has no room.
    virtual std::error_code close() = 0;
};

/// What replacing a file needs of a file system, so that its failures can be played through.
class FileSystem
{
  public:
    virtual ~FileSystem() = default;
    /// Makes an empty file, or empties one that was left behind.
    /// @return null with `error` set when it cannot be made; `std::errc::device_or_resource_busy`
    ///         when somebody is writing it.
    virtual std::unique_ptr<NewFile> create(const std::filesystem::path& path,
                                            std::error_code& error) = 0;
    virtual std::error_code rename(const std::filesystem::path& from,
                                   const std::filesystem::path& to) = 0;
    virtual void remove(const std::filesystem::path& path) = 0;
    /// Makes a file that is not there yet, which has no name before all of its content is in it.
    /// @return whether it was made. If not, nothing has changed, and replacing the file tells why.
    virtual bool writeNew(const std::filesystem::path& path, std::string_view bytes);
};

/// The file system of the machine.
FileSystem& machineFileSystem();

/// The temporary name beside `file` under which it is written: short, hidden, and the same in every
/// run, so that what a killed run left behind is taken over by the next one.
/// @param attempt counts on while other processes write the same file.
std::filesystem::path temporaryBeside(const std::filesystem::path& file, int attempt = 0);

/// Writes the content of a new file; stops at the first error.
using Content = std::function<std::error_code(NewFile&)>;

/// Makes `file` a file of that content, or leaves everything as it was: the content goes to a
/// temporary name, which is renamed when all of it has been written.
/// @param beforeRename a last touch on the temporary file; may be empty.
std::error_code replaceFile(
    const std::filesystem::path& file, const Content& content,
    const std::function<void(const std::filesystem::path&)>& beforeRename = {},
    FileSystem& files = machineFileSystem());

/// The same for bytes that are at hand; without a temporary name where the system can.
/// @throws std::filesystem::filesystem_error "cannot write", with the file's path.
void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes,
                         FileSystem& files = machineFileSystem());

/// Makes `to` a copy of `from`, with its time of last change.
std::error_code copyFileAtomically(const std::filesystem::path& from,
                                   const std::filesystem::path& to,
                                   FileSystem& files = machineFileSystem());

} // namespace vyr::MaterialTranslation::core
