#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>

/// @file
/// What a deflate stream is made of: bits, and symbols in prefix codes.
namespace vyr::MaterialTranslation::baking::deflate
{

using Lengths = std::span<const std::uint8_t>;

inline constexpr unsigned longestCode = 15;
inline constexpr unsigned endOfBlock = 256;
inline constexpr std::size_t literalCodes = 288;
inline constexpr std::size_t distanceCodes = 32;

[[noreturn]] inline void fail()
{
    throw std::runtime_error("the packed data are no deflate stream");
}

inline std::uint64_t lowestFirst(const std::array<unsigned char, sizeof(std::uint64_t)>& bytes)
{
    if constexpr (std::endian::native == std::endian::little)
        return std::bit_cast<std::uint64_t>(bytes);
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bits |= std::uint64_t{bytes[i]} << (8 * i);
    return bits;
}

class Bits
{
  public:
    /// Valid bits of peek().
    static constexpr unsigned window = 57;

    explicit Bits(std::span<const unsigned char> data) : _data(data) {}

    std::size_t at() const { return _at; }

    /// The next bits, zeros behind the end.
    std::uint64_t peek() const
    {
        const std::size_t byte = _at / 8;
        std::array<unsigned char, sizeof(std::uint64_t)> next{};
        if (byte + next.size() <= _data.size())
            std::memcpy(next.data(), _data.data() + byte, next.size());
        else if (byte < _data.size())
            std::memcpy(next.data(), _data.data() + byte, _data.size() - byte);
        return lowestFirst(next) >> (_at % 8);
    }

    void skip(std::size_t count)
    {
        _at += count;
        if (_at > _data.size() * 8)
            fail();
    }

    unsigned take(unsigned count)
    {
        const auto value = static_cast<unsigned>(peek() & ((1U << count) - 1));
        skip(count);
        return value;
    }

    void skipToByte() { _at = (_at + 7) / 8 * 8; }

  private:
    std::span<const unsigned char> _data;
    std::size_t _at = 0;
};

struct Symbol
{
    std::uint16_t value;
    std::uint8_t length; ///< bits of its code; 0 in a table: longer than the table knows
};

/// A canonical Huffman code. Most codes are short, and a table finds them.
class PrefixCode
{
  public:
    static constexpr unsigned tableBits = 11;
    static constexpr std::size_t tableSize = std::size_t{1} << tableBits;

    explicit PrefixCode(Lengths lengths)
    {
        for (const std::uint8_t length : lengths)
            ++_counts[length];
        _counts[0] = 0;
        std::array<std::uint16_t, longestCode + 1> places{};
        std::array<unsigned, longestCode + 1> codes{};
        for (unsigned length = 1; length <= longestCode; ++length)
        {
            places[length] = static_cast<std::uint16_t>(places[length - 1] + _counts[length - 1]);
            codes[length] = (codes[length - 1] + _counts[length - 1]) << 1U;
        }
        for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol)
        {
            const std::uint8_t length = lengths[symbol];
            if (length == 0)
                continue;
            const auto value = static_cast<std::uint16_t>(symbol);
            _symbols[places[length]++] = value;
            fill({value, length}, codes[length]++);
        }
    }

    const Symbol& inTable(std::uint64_t bits) const { return _table[bits % tableSize]; }

    Symbol next(std::uint64_t bits) const
    {
        const Symbol& known = inTable(bits);
        return known.length != 0 ? known : search(bits);
    }

  private:
    /// The table is looked up by the bits as they come, the first bit of a code lowest.
    void fill(Symbol symbol, unsigned code)
    {
        if (symbol.length > tableBits || code >> symbol.length != 0)
            return;
        std::size_t reversed = 0;
        for (unsigned bit = 0; bit < symbol.length; ++bit)
            reversed |= std::size_t{code >> bit & 1U} << (symbol.length - 1 - bit);
        for (std::size_t i = reversed; i < tableSize; i += std::size_t{1} << symbol.length)
            _table[i] = symbol;
    }

    Symbol search(std::uint64_t bits) const
    {
        unsigned code = 0;
        unsigned first = 0;
        unsigned place = 0;
        for (unsigned length = 1; length <= longestCode; ++length, bits >>= 1U)
        {
            code |= static_cast<unsigned>(bits & 1U);
            const unsigned count = _counts[length];
            if (code < first + count)
                return {_symbols[place + code - first], static_cast<std::uint8_t>(length)};
            place += count;
            first = (first + count) << 1U;
            code <<= 1U;
        }
        fail();
    }

    std::array<std::uint16_t, longestCode + 1> _counts{};
    std::array<std::uint16_t, literalCodes> _symbols{};
    std::array<Symbol, tableSize> _table{};
};

} // namespace vyr::MaterialTranslation::baking::deflate
