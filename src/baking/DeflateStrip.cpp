#include "baking/DeflateStrip.h"

#include <memory>
#include <new>
#include <stdexcept>

#include <libdeflate.h>

namespace vyr::MaterialTranslation::baking
{

std::vector<unsigned char> pack(std::span<const unsigned char> data, int level)
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

void openEnd(std::vector<unsigned char>& stream)
{
    const LastBlock last = findLastBlock(stream);
    if ((last.end + 7) / 8 != stream.size())
        throw std::runtime_error("the packed data go on behind their last block");
    stream[last.begin / 8] &= static_cast<unsigned char>(~(1U << (last.begin % 8)));
    constexpr std::size_t header = 3; // zeros: not the last, stored
    if (stream.size() * 8 - last.end < header)
        stream.push_back(0);
    stream.insert(stream.end(), {0, 0, 0xFF, 0xFF});
}

} // namespace vyr::MaterialTranslation::baking
