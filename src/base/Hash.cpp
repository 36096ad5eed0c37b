#include "base/Hash.h"

#include <algorithm>
#include <fstream>
#include <new>
#include <vector>

#include <fmt/format.h>
#include <xxhash.h>

#include "base/Paths.h"

namespace vyr::base
{

namespace
{

std::string digitsOf(const XXH128_hash_t& hash)
{
    return fmt::format("{:016x}{:016x}", hash.high64, hash.low64);
}

} // namespace

Hash::Hash() : _state(XXH3_createState())
{
    if (!_state)
        throw std::bad_alloc();
    XXH3_128bits_reset(static_cast<XXH3_state_t*>(_state));
}

Hash::~Hash()
{
    XXH3_freeState(static_cast<XXH3_state_t*>(_state));
}

void Hash::add(std::string_view bytes)
{
    XXH3_128bits_update(static_cast<XXH3_state_t*>(_state), bytes.data(), bytes.size());
}

std::string Hash::digits() const
{
    return digitsOf(XXH3_128bits_digest(static_cast<const XXH3_state_t*>(_state)));
}

std::string hashOf(std::string_view bytes)
{
    return digitsOf(XXH3_128bits(bytes.data(), bytes.size()));
}

std::optional<std::string> hashOfFile(const std::filesystem::path& file, std::uint64_t mostBytes)
{
    constexpr std::uint64_t atOnce = std::uint64_t{1} << 20;
    std::error_code error;
    if (!isFile(file))
        return std::nullopt;
    // Files that the system makes up are empty by their size, and some of them never end.
    std::uint64_t left = std::filesystem::file_size(file, error);
    if (error || left > mostBytes)
        return std::nullopt;
    Hash hash;
    std::ifstream stream(file, std::ios::binary);
    for (std::vector<char> piece(std::min(left, atOnce)); stream && left > 0;)
    {
        const std::uint64_t size = std::min<std::uint64_t>(left, piece.size());
        stream.read(piece.data(), static_cast<std::streamsize>(size));
        hash.add({piece.data(), static_cast<std::size_t>(stream.gcount())});
        left -= static_cast<std::uint64_t>(stream.gcount());
    }
    return left == 0 && stream.good() ? std::optional(hash.digits()) : std::nullopt;
}

} // namespace vyr::base
