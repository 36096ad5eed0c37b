#include "baking/DeflateStrip.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <stdexcept>

#include <libdeflate.h>

namespace vyr::MaterialTranslation::baking
{

namespace
{

using Bytes = std::span<const unsigned char>;

std::vector<unsigned char> packAt(int level, Bytes data)
{
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), libdeflate_free_compressor);
    if (!compressor)
        throw std::bad_alloc();
    std::vector<unsigned char> packed(
        libdeflate_deflate_compress_bound(compressor.get(), data.size()));
    packed.resize(libdeflate_deflate_compress(compressor.get(), data.data(), data.size(),
                                              packed.data(), packed.size()));
    return packed;
}

int chooseLevel(Bytes) { return 6; }

} // namespace

void openEnd(std::vector<unsigned char>& stream)
{
    const LastBlock last = findLastBlock(stream);
    if ((last.end + 7) / 8 != stream.size())
        throw std::runtime_error("the packed data go on behind their last block");
    stream[last.begin / 8] &= static_cast<unsigned char>(~(1U << (last.begin % 8)));
    constexpr std::size_t header = 3; // zeros: not the last, stored
    const std::size_t free = stream.size() * 8 - last.end;
    if (free < header)
        stream.push_back(0);
    stream.insert(stream.end(), {0, 0, 0xFF, 0xFF});
}

std::vector<unsigned char> packStrip(Bytes data, bool last)
{
    std::vector<unsigned char> packed = packAt(chooseLevel(data), data);
    if (!last)
        openEnd(packed);
    return packed;
}

} // namespace vyr::MaterialTranslation::baking
