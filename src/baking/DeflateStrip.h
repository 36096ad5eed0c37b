#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// @file
/// Deflate in strips that are packed side by side and become one stream.
namespace vyr::MaterialTranslation::baking
{

/// Where the last block of a deflate stream begins and ends, in bits.
struct LastBlock
{
    std::size_t begin;
    std::size_t end;
};

/// Walks through the blocks without unpacking them.
/// @throws std::runtime_error when this is no deflate stream.
LastBlock findLastBlock(std::span<const unsigned char> stream);

/// Takes the final mark from a deflate stream and ends it at a whole byte, so that another one may follow.
///
/// libdeflate ends every stream, but the mark is one bit in the header of the last block. An empty stored block
/// behind it fills up the byte, as zlib's Z_SYNC_FLUSH does.
void openEnd(std::vector<unsigned char>& stream);

/// Packs with the fastest of a few levels that packs a sample of the data nearly as well as the best.
/// @param last  The stream ends here; otherwise it is open.
/// @throws std::bad_alloc
std::vector<unsigned char> packStrip(std::span<const unsigned char> data, bool last);

} // namespace vyr::MaterialTranslation::baking
