#pragma once

#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

/// @file
/// Files that are written whole or not at all.
///
/// The bytes go to a temporary name beside the file, ".vyr-<hash>-<n>.tmp", which is renamed when all of
/// them are there. The temporary name is the same in every run and locked while it is written, so that
/// what a killed run left behind is taken over by the next one, and two processes never write one file.
/// A new file gets its name only when it is whole, without a temporary one, where the system can.
///
/// A file that has these bytes already is left alone, its time of last change too.
///
/// What is replaced is the name: a symbolic link there is not followed, other hard links keep the old
/// content. Devices, pipes, sockets and links to them are refused. Whatever fails, the file is as it was
/// and no temporary one stays.
namespace vyr::base
{

/// What becomes of a file that has its bytes already.
enum class SameBytes
{
    Stay,
    AreWritten,
};

/// A file that is whole and has only its temporary name. It is gone with the object unless it was given a place.
class PendingFile
{
  public:
    PendingFile();
    PendingFile(PendingFile&&) noexcept;
    PendingFile& operator=(PendingFile&&) noexcept;
    ~PendingFile();

    /// Writes the bytes, or copies a file with its time of last change. Once for each object.
    /// @param file its place; nothing changes there yet.
    std::error_code write(const std::filesystem::path& file, std::string_view bytes);
    std::error_code copy(const std::filesystem::path& from, const std::filesystem::path& to);

    /// Moves it to a place in its folder, which may be another one. What is there is replaced.
    std::error_code replace(const std::filesystem::path& file);

    /// As replace, and remembers whether nothing was there.
    std::error_code publish(const std::filesystem::path& file, SameBytes same = SameBytes::Stay);

    /// Removes the published file again, if nothing was there before and nobody has replaced it since.
    void withdraw() const;

  private:
    class State;
    std::unique_ptr<State> _state;
};

/// Whether an ordinary file of these bytes stands in the place; a symbolic link to one does not.
bool hasBytes(const std::filesystem::path& file, std::string_view bytes);

/// Whether such a file has the bytes of another one, which may be reached through links.
bool hasBytesOf(const std::filesystem::path& file, const std::filesystem::path& source);

struct Written
{
    std::error_code error;
    /// The bytes were there already.
    bool stayed = false;
};

/// Makes `file` a file of these bytes.
Written writeFile(const std::filesystem::path& file, std::string_view bytes,
                  SameBytes same = SameBytes::Stay);

/// Makes `to` a copy of `from`, with its time of last change.
std::error_code copyFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// Waits until all that was written to the file system of a folder, by whom ever, is on its disk: one
/// request costs much less than one for each file. On Windows it does nothing, as that takes an
/// administrator there.
std::error_code waitForDisk(const std::filesystem::path& folder);

} // namespace vyr::base
