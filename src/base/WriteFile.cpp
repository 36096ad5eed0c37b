#include "base/WriteFile.h"

#include <atomic>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "base/NewFile.h"

namespace vyr::base
{

namespace fs = std::filesystem;

namespace
{

/// FNV-1a, which gives the same number everywhere (http://www.isthe.com/chongo/tech/comp/fnv/).
std::uint64_t hashOf(const std::u8string& text)
{
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char8_t c : text)
        hash = (hash ^ c) * 0x100000001B3U;
    return hash;
}

fs::path temporaryBeside(const fs::path& file, int attempt)
{
    return file.parent_path() /
           fmt::format(".vyr-{:x}-{}.tmp", hashOf(file.filename().u8string()), attempt);
}

/// Whether something stands in the file's place that no renaming must take away: a device, a pipe, a
/// socket, or a link to one.
bool isSpecial(const fs::path& file)
{
    std::error_code error;
    // "/dev/stdout" leads to what this process has open at the moment, which may well be a file.
    const std::u8string target = fs::read_symlink(file, error).generic_u8string();
    if (target.starts_with(u8"/proc/") || target.starts_with(u8"/dev/"))
        return true;
    const fs::file_status status = fs::status(file, error);
    return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

std::error_code copyInto(NewFile& target, const fs::path& from)
{
#if defined(__linux__)
    if (const auto done = target.copyFrom(from))
        return *done;
#endif
    std::ifstream source(from, std::ios::binary);
    if (!source)
        return std::make_error_code(std::errc::permission_denied);
    std::vector<char> piece(std::size_t{1} << 20);
    while (source)
    {
        source.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        if (const auto error =
                target.write({piece.data(), static_cast<std::size_t>(source.gcount())}))
            return error;
    }
    return source.bad() ? std::make_error_code(std::errc::io_error) : std::error_code();
}

/// @param next gives a piece of the bytes that are expected, at most as long as asked for; an empty one at the end.
template <class Next> bool holds(std::ifstream& file, const Next& next)
{
    constexpr std::size_t atOnce = std::size_t{1} << 16;
    std::vector<char> piece(atOnce);
    while (file)
    {
        file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        const auto count = static_cast<std::size_t>(file.gcount());
        if (file.bad() || next(count) != std::string_view(piece.data(), count))
            return false;
    }
    return file.eof();
}

/// Makes a file that is not there yet, which has no name before all of its content is in it.
/// @return whether it was made. If not, nothing has changed, and replacing the file tells why.
bool writeNewFile([[maybe_unused]] const fs::path& file, [[maybe_unused]] std::string_view bytes)
{
#if defined(__linux__)
    NewFile target;
    return target.openUnnamed(file.parent_path()) && !target.write(bytes) && !target.finish() &&
           target.giveName(file);
#else
    return false;
#endif
}

} // namespace

class PendingFile::State
{
  public:
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    ~State()
    {
        std::error_code ignored;
        if (!_temporary.empty())
            fs::remove(_temporary, ignored);
    }

    /// @param fill writes into a NewFile.
    template <class Fill> std::error_code make(const fs::path& file, const Fill& fill)
    {
        constexpr int mostAttempts = 100;
        if (isSpecial(file))
            return std::make_error_code(std::errc::operation_not_permitted);
        std::error_code error = busy();
        for (int attempt = 0; attempt < mostAttempts && error == busy(); ++attempt)
        {
            const fs::path temporary = temporaryBeside(file, attempt);
            error = _target.emplace().open(temporary);
            if (!error)
                _temporary = temporary;
        }
        if (error)
            return error;
        error = fill(*_target);
        const std::error_code finished = _target->finish();
        return error ? error : finished;
    }

    std::error_code rename(const fs::path& file)
    {
        std::error_code error;
        fs::rename(_temporary, file, error);
        if (!error)
            _temporary.clear();
        return error;
    }

    std::error_code publish(const fs::path& file, SameBytes same)
    {
        if (same == SameBytes::Stay && hasBytesOf(file, _temporary))
        {
            std::error_code ignored;
            fs::remove(std::exchange(_temporary, fs::path()), ignored);
            _target.reset();
            return {};
        }
        // It may be another place than the one for which it was written.
        if (isSpecial(file))
            return std::make_error_code(std::errc::operation_not_permitted);
        std::error_code error;
        // Where there is nothing yet, and in one step: of two, a process that is killed may do one. Not every
        // system has such a step, nor second names.
        const bool isMoved = NewFile::renameToNew(_temporary, file);
        if (!isMoved)
            fs::create_hard_link(_temporary, file, error);
        const bool isLinked = !isMoved && !error;
        _isNew = isMoved || isLinked || !fs::exists(fs::symlink_status(file, error));
        if (isMoved)
            _temporary.clear();
        else if (isLinked)
            fs::remove(std::exchange(_temporary, fs::path()), error);
        else if (error = rename(file); error)
            return error;
        _published = file;
        _mark = _target->mark();
        _target.reset();
        return {};
    }

    void withdraw() const
    {
        std::error_code ignored;
        if (_isNew && NewFile::hasMark(_published, _mark))
            fs::remove(_published, ignored);
    }

  private:
    std::optional<NewFile> _target;
    /// Empty while the file has none.
    fs::path _temporary;
    fs::path _published;
    FileMark _mark{};
    bool _isNew = false;
};

PendingFile::PendingFile() : _state(std::make_unique<State>()) {}
PendingFile::PendingFile(PendingFile&&) noexcept = default;
PendingFile& PendingFile::operator=(PendingFile&&) noexcept = default;
PendingFile::~PendingFile() = default;

std::error_code PendingFile::write(const fs::path& file, std::string_view bytes)
{
    return _state->make(file, [&](NewFile& target) { return target.write(bytes); });
}

std::error_code PendingFile::copy(const fs::path& from, const fs::path& to)
{
    return _state->make(to,
                        [&](NewFile& target)
                        {
                            const std::error_code error = copyInto(target, from);
                            if (!error)
                                target.copyTime(from);
                            return error;
                        });
}

std::error_code PendingFile::publish(const fs::path& file, SameBytes same)
{
    return _state->publish(file, same);
}

std::error_code PendingFile::replace(const fs::path& file)
{
    return _state->rename(file);
}

void PendingFile::withdraw() const
{
    _state->withdraw();
}

bool hasBytes(const fs::path& file, std::string_view bytes)
{
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(file, error)) ||
        fs::file_size(file, error) != bytes.size())
        return false;
    std::ifstream stream(file, std::ios::binary);
    return holds(stream,
                 [&](std::size_t count)
                 {
                     const std::string_view piece = bytes.substr(0, count);
                     bytes.remove_prefix(piece.size());
                     return piece;
                 });
}

bool hasBytesOf(const fs::path& file, const fs::path& source)
{
    std::error_code error;
    std::error_code sourceError;
    if (!fs::is_regular_file(fs::symlink_status(file, error)) ||
        fs::file_size(file, error) != fs::file_size(source, sourceError) || error || sourceError)
        return false;
    std::ifstream stream(file, std::ios::binary);
    std::ifstream expected(source, std::ios::binary);
    std::string piece;
    return expected && holds(stream,
                             [&](std::size_t count)
                             {
                                 piece.resize(count);
                                 expected.read(piece.data(), static_cast<std::streamsize>(count));
                                 piece.resize(static_cast<std::size_t>(expected.gcount()));
                                 return std::string_view(piece);
                             });
}

Written writeFile(const fs::path& file, std::string_view bytes, SameBytes same)
{
    // Where the last file was new, this one probably is too, and asking costs more than trying.
    static std::atomic<bool> lastWasThere{false};
    const bool isTried = !lastWasThere;
    if (isTried && writeNewFile(file, bytes))
        return {};
    std::error_code error;
    lastWasThere = fs::exists(fs::symlink_status(file, error));
    if (same == SameBytes::Stay && lastWasThere && hasBytes(file, bytes))
        return {{}, true};
    if (!isTried && !lastWasThere && writeNewFile(file, bytes))
        return {};
    PendingFile pending;
    error = pending.write(file, bytes);
    return {error ? error : pending.replace(file)};
}

std::error_code copyFile(const fs::path& from, const fs::path& to)
{
    PendingFile pending;
    const std::error_code error = pending.copy(from, to);
    return error ? error : pending.replace(to);
}

std::error_code waitForDisk([[maybe_unused]] const fs::path& folder)
{
#if defined(__linux__)
    const int descriptor = openFile(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY);
    if (descriptor < 0)
        return lastError();
    const std::error_code error = ::syncfs(descriptor) == 0 ? std::error_code() : lastError();
    ::close(descriptor);
    return error;
#else
#if !defined(_WIN32)
    ::sync();
#endif
    return {};
#endif
}

} // namespace vyr::base
