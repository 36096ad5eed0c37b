#include "core/AtomicFile.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

namespace vyr::MaterialTranslation::core
{

namespace fs = std::filesystem;

namespace
{

/// Removes a file on the way out, unless it was kept.
class TemporaryFile
{
  public:
    explicit TemporaryFile(fs::path path) : _path(std::move(path)) {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile()
    {
        std::error_code ignored;
        if (!_path.empty())
            fs::remove(_path, ignored);
    }

    const fs::path& path() const { return _path; }
    void keep() { _path.clear(); }

  private:
    fs::path _path;
};

std::string hexadecimal(std::uint64_t value)
{
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16);
    return {digits.data(), end.ptr};
}

/// The error of the last failed call, as far as the standard library kept it.
std::error_code lastError()
{
    return errno != 0 ? std::error_code(errno, std::generic_category())
                      : std::make_error_code(std::errc::io_error);
}

void writeAll(const fs::path& path, std::string_view bytes, const fs::path& reported)
{
    errno = 0;
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream)
        throw fs::filesystem_error("cannot write", reported, lastError());
}

} // namespace

fs::path temporaryBeside(const fs::path& file)
{
    static const std::uint64_t process = []
    {
        std::random_device device;
        return (static_cast<std::uint64_t>(device()) << 32) | device();
    }();
    static std::atomic<std::uint64_t> counter{0};
    return file.parent_path() /
           (".vyr-" + hexadecimal(process) + "-" + hexadecimal(counter++) + ".tmp");
}

void writeFileAtomically(const fs::path& file, std::string_view bytes)
{
    TemporaryFile temporary(temporaryBeside(file));
    writeAll(temporary.path(), bytes, file);
    std::error_code error;
    fs::rename(temporary.path(), file, error);
    if (error)
        throw fs::filesystem_error("cannot write", file, error);
    temporary.keep();
}

} // namespace vyr::MaterialTranslation::core
