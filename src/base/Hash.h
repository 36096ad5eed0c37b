#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// @file
/// What tells contents apart: 32 hexadecimal digits, the same ones on every system and in every version (XXH3, 128
/// bits). Not against somebody who looks for another content of the same hash.
namespace vyr::base
{

/// Of pieces of bytes, one after the other.
class Hash
{
  public:
    Hash();
    Hash(const Hash&) = delete;
    Hash& operator=(const Hash&) = delete;
    ~Hash();

    void add(std::string_view bytes);
    std::string digits() const;

  private:
    void* _state;
};

std::string hashOf(std::string_view bytes);

/// Of a file's content; links are followed.
/// @param mostBytes A larger file is not read.
/// @return nothing when it is no ordinary file, or cannot be read.
std::optional<std::string> hashOfFile(const std::filesystem::path& file,
                                      std::uint64_t mostBytes = UINT64_MAX);

} // namespace vyr::base
