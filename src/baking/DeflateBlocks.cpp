#include <algorithm>
#include <array>
#include <cstdint>

#include "baking/DeflateCode.h"
#include "baking/DeflateStrip.h"

namespace vyr::MaterialTranslation::baking
{

namespace
{

using namespace deflate;

unsigned extraLengthBits(unsigned symbol)
{
    return symbol < 265 || symbol >= 285 ? 0 : (symbol - 261) / 4;
}

unsigned extraDistanceBits(unsigned symbol)
{
    return symbol < 2 ? 0 : symbol / 2 - 1;
}

/// What a look at the next bits finds, as the state that it leaves: no branch hangs on what it was.
struct Step
{
    enum State : std::uint8_t
    {
        Symbol,   ///< next comes a literal, a length or the end
        Distance, ///< next comes a distance
        End,
        LongSymbol, ///< next comes one that the table does not know
        LongDistance,
    };
    std::uint8_t bits;
    State state;
};

/// As many literals as the table's bits hold, and what follows: here only their bits matter.
Step symbolStep(const PrefixCode& code, std::size_t bits)
{
    unsigned length = 0;
    for (;;)
    {
        const Symbol next = code.inTable(bits >> length);
        if (next.length == 0 || length + next.length > PrefixCode::tableBits)
            return {static_cast<std::uint8_t>(length),
                    length == 0 ? Step::LongSymbol : Step::Symbol};
        length += next.length;
        if (next.value == endOfBlock)
            return {static_cast<std::uint8_t>(length), Step::End};
        if (next.value > endOfBlock)
            return {static_cast<std::uint8_t>(length + extraLengthBits(next.value)),
                    Step::Distance};
    }
}

Step distanceStep(const PrefixCode& code, std::size_t bits)
{
    const Symbol distance = code.inTable(bits);
    if (distance.length == 0)
        return {0, Step::LongDistance};
    return {static_cast<std::uint8_t>(distance.length + extraDistanceBits(distance.value)),
            Step::Symbol};
}

Step::State skipLongSymbol(Bits& bits, const PrefixCode& code)
{
    const Symbol symbol = code.next(bits.peek());
    bits.skip(symbol.length + extraLengthBits(symbol.value));
    if (symbol.value == endOfBlock)
        return Step::End;
    return symbol.value > endOfBlock ? Step::Distance : Step::Symbol;
}

Step::State skipLongDistance(Bits& bits, const PrefixCode& code)
{
    const Symbol distance = code.next(bits.peek());
    bits.skip(distance.length + extraDistanceBits(distance.value));
    return Step::Symbol;
}

void skipSymbols(Bits& bits, const PrefixCode& symbols, const PrefixCode& distances)
{
    constexpr std::size_t size = PrefixCode::tableSize;
    std::array<Step, 2 * size> steps; // for Step::Symbol and Step::Distance
    for (std::size_t i = 0; i < size; ++i)
    {
        steps[i] = symbolStep(symbols, i);
        steps[size + i] = distanceStep(distances, i);
    }
    for (Step::State state = Step::Symbol; state != Step::End;)
    {
        std::uint64_t next = bits.peek();
        std::size_t used = 0;
        for (int i = 0; i < 3 && used + PrefixCode::tableBits <= Bits::window; ++i)
        {
            const Step step = steps[state * size + next % size];
            next >>= step.bits;
            used += step.bits;
            state = step.state;
            if (state > Step::Distance)
                break;
        }
        bits.skip(used);
        if (state == Step::LongSymbol)
            state = skipLongSymbol(bits, symbols);
        else if (state == Step::LongDistance)
            state = skipLongDistance(bits, distances);
    }
}

void skipStored(Bits& bits)
{
    bits.skipToByte();
    const std::size_t size = bits.take(16);
    bits.skip(16 + 8 * size);
}

void skipFixed(Bits& bits)
{
    std::array<std::uint8_t, literalCodes> literals;
    std::array<std::uint8_t, distanceCodes> distances;
    std::fill_n(literals.begin(), 144, std::uint8_t{8});
    std::fill_n(literals.begin() + 144, 112, std::uint8_t{9});
    std::fill_n(literals.begin() + 256, 24, std::uint8_t{7});
    std::fill_n(literals.begin() + 280, 8, std::uint8_t{8});
    distances.fill(5);
    skipSymbols(bits, PrefixCode(literals), PrefixCode(distances));
}

/// Fills in the lengths of codes, which are packed themselves.
void takeLengths(Bits& bits, const PrefixCode& code, std::span<std::uint8_t> lengths)
{
    for (std::size_t i = 0; i < lengths.size();)
    {
        const Symbol symbol = code.next(bits.peek());
        bits.skip(symbol.length);
        std::uint8_t repeated = 0;
        std::size_t times = 1;
        if (symbol.value < 16)
            repeated = static_cast<std::uint8_t>(symbol.value);
        else if (symbol.value == 16 && i > 0)
        {
            repeated = lengths[i - 1];
            times = 3 + bits.take(2);
        }
        else if (symbol.value == 17)
            times = 3 + bits.take(3);
        else if (symbol.value == 18)
            times = 11 + bits.take(7);
        else
            fail();
        if (times > lengths.size() - i)
            fail();
        std::ranges::fill(lengths.subspan(i, times), repeated);
        i += times;
    }
}

void skipDynamic(Bits& bits)
{
    constexpr std::uint8_t order[] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                      11, 4,  12, 3, 13, 2, 14, 1, 15};
    const std::size_t literals = 257 + bits.take(5);
    const std::size_t distances = 1 + bits.take(5);
    const std::size_t given = 4 + bits.take(4);
    if (literals > literalCodes)
        fail();
    std::array<std::uint8_t, std::size(order)> lengthCode{};
    for (std::size_t i = 0; i < given; ++i)
        lengthCode[order[i]] = static_cast<std::uint8_t>(bits.take(3));
    std::array<std::uint8_t, literalCodes + distanceCodes> lengths{};
    const std::span both = std::span(lengths).first(literals + distances);
    takeLengths(bits, PrefixCode(lengthCode), both);
    skipSymbols(bits, PrefixCode(both.first(literals)), PrefixCode(both.subspan(literals)));
}

} // namespace

LastBlock findLastBlock(std::span<const unsigned char> stream)
{
    constexpr void (*skipBlock[])(Bits&) = {skipStored, skipFixed, skipDynamic};
    Bits bits(stream);
    for (;;)
    {
        const std::size_t begin = bits.at();
        const bool last = bits.take(1) != 0;
        const unsigned kind = bits.take(2);
        if (kind >= std::size(skipBlock))
            fail();
        skipBlock[kind](bits);
        if (last)
            return {begin, bits.at()};
    }
}

} // namespace vyr::MaterialTranslation::baking
