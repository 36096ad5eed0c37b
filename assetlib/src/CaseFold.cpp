#include "CaseFold.h"

#include <array>

namespace vyr::assetlib
{

namespace
{

/// Capital letters first, first + step, ... last, each `shift` below its small letter. From
/// Unicode's CaseFolding table, status C, below U+0800.
struct CapitalRange
{
    unsigned first;
    unsigned last;
    unsigned step;
    unsigned shift;
};

constexpr std::array capitals = {
    CapitalRange{0x0041, 0x005A, 1, 32}, // A-Z
    CapitalRange{0x00C0, 0x00D6, 1, 32}, // Latin-1, without the multiplication sign
    CapitalRange{0x00D8, 0x00DE, 1, 32}, CapitalRange{0x0100, 0x012E, 2, 1}, // Latin Extended-A
    CapitalRange{0x0132, 0x0136, 2, 1},  CapitalRange{0x0139, 0x0147, 2, 1},
    CapitalRange{0x014A, 0x0176, 2, 1},  CapitalRange{0x0179, 0x017D, 2, 1},
    CapitalRange{0x0391, 0x03A1, 1, 32},                                      // Greek
    CapitalRange{0x03A3, 0x03AB, 1, 32}, CapitalRange{0x0400, 0x040F, 1, 80}, // Cyrillic
    CapitalRange{0x0410, 0x042F, 1, 32}, CapitalRange{0x0460, 0x0480, 2, 1},
    CapitalRange{0x048A, 0x04BE, 2, 1},
};

unsigned smallLetter(unsigned letter)
{
    for (const CapitalRange& range : capitals)
    {
        if (letter >= range.first && letter <= range.last &&
            (letter - range.first) % range.step == 0)
            return letter + range.shift;
    }
    return letter;
}

} // namespace

std::string foldCase(std::string_view text)
{
    std::string folded(text);
    for (std::size_t i = 0; i < folded.size(); ++i)
    {
        const auto lead = static_cast<unsigned char>(folded[i]);
        if (lead < 0x80)
        {
            folded[i] = static_cast<char>(smallLetter(lead));
        }
        else if ((lead & 0xE0) == 0xC0 && i + 1 < folded.size())
        {
            // Two bytes hold every letter of the table's upper part and its small letter.
            const unsigned letter = smallLetter(
                (lead & 0x1Fu) << 6 | (static_cast<unsigned char>(folded[i + 1]) & 0x3Fu));
            folded[i] = static_cast<char>(0xC0u | letter >> 6);
            folded[i + 1] = static_cast<char>(0x80u | (letter & 0x3Fu));
            ++i;
        }
    }
    return folded;
}

} // namespace vyr::assetlib
