#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// @file
/// Deflate in strips that are packed side by side and become one stream.
namespace vyr::MaterialTranslation::baking
{

/// A whole deflate stream.
/// @param level  libdeflate's, 1 to 12.
/// @throws std::bad_alloc
std::vector<unsigned char> pack(std::span<const unsigned char> data, int level);

/// Takes the final mark from a deflate stream and ends it at a whole byte, so that another one may follow.
///
/// libdeflate ends every stream, but the mark is one bit in the header of the last block. An empty stored block
/// behind it fills up the byte, as zlib's Z_SYNC_FLUSH does.
/// @throws std::runtime_error when it is no deflate stream.
void openEnd(std::vector<unsigned char>& stream);

/// Where the last block of a deflate stream begins and ends, in bits.
struct LastBlock
{
    std::size_t begin;
    std::size_t end;
};

/// Walks through the blocks without unpacking them.
/// @throws std::runtime_error when it is no deflate stream.
LastBlock findLastBlock(std::span<const unsigned char> stream);

} // namespace vyr::MaterialTranslation::baking
