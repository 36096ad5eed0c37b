#include "FileText.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <vector>

#include "Json.h"
#include "Paths.h"

namespace vyr::assetlib
{

namespace fs = std::filesystem;

namespace
{

/// 1 GiB: keeps a mistaken device or disk image from filling the memory.
constexpr std::size_t largestFile = std::size_t{1} << 30;

/// Pipes are files too: what can be opened is read.
std::string whyNoFile(const fs::path& path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    if (status.type() == fs::file_type::not_found)
        return "no such file";
    if (status.type() == fs::file_type::directory)
        return "expected a file, this is a folder";
    return error ? "cannot be read: " + error.message() : std::string();
}

std::string lastError()
{
    return errno != 0 ? ": " + std::generic_category().message(errno) : std::string();
}

} // namespace

std::optional<std::string> readFile(Report& report)
{
    const auto fail = [&](std::string message) -> std::optional<std::string>
    {
        report.error(Place(), std::move(message));
        return std::nullopt;
    };
    const fs::path path = pathOf(report.file());
    if (std::string why = whyNoFile(path); !why.empty())
        return fail(std::move(why));

    errno = 0;
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        return fail("cannot be read" + lastError());
    std::string text;
    // Pipes and devices have no size, and a file may grow while it is read.
    std::error_code unknownSize;
    const std::uintmax_t size = fs::file_size(path, unknownSize);
    if (!unknownSize && size <= largestFile)
        text.reserve(static_cast<std::size_t>(size) + JsonDocument::roomBehind);
    std::vector<char> block(std::size_t{1} << 16);
    while (stream && text.size() <= largestFile)
    {
        stream.read(block.data(), static_cast<std::streamsize>(block.size()));
        text.append(block.data(), static_cast<std::size_t>(stream.gcount()));
    }
    if (stream.bad())
        return fail("cannot be read" + lastError());
    if (text.size() > largestFile)
        return fail("expected at most 1 GiB");
    if (text.empty())
        return fail("the file is empty");
    return text;
}

} // namespace vyr::assetlib
