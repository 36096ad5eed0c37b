#pragma once

#include <cstddef>
#include <vector>

namespace vyr::MaterialTranslation::baking
{

/// What PNG subtracts from a byte: the one to the left, the one above and so on, in the order of their numbers.
enum class PngFilter : unsigned char
{
    Nothing,
    Left,
    Above,
    Average,
    Paeth,
    Best, ///< of each row the one whose bytes, taken as signed, have the lowest sum without signs
};

/// Turns rows of floats into PNG's filtered rows of bytes, from the top down. A row that has none above takes the
/// best filter, whichever is given.
class PngRows
{
  public:
    /// @param values    Values in a row.
    /// @param channels  Values of a pixel, at most 4.
    PngRows(std::size_t values, std::size_t channels, PngFilter filter);

    /// Sets the row above the next one; without it that is a row of zeros, as above the first row of an image.
    void setAbove(const float* row);

    /// Writes the filter's number and the filtered bytes of the row: 1 + values bytes.
    void add(const float* row, unsigned char* filtered);

  private:
    std::size_t _values;
    std::size_t _channels;
    PngFilter _filter;
    bool _hasAbove = false;
    // Zeros stand in front of both, for the pixel left of the first.
    std::vector<unsigned char> _row;
    std::vector<unsigned char> _above;
};

/// Rounds from the range 0 to 1 to bytes as the image library does: halves up, and what is no number to 0.
void roundToBytes(const float* values, std::size_t count, unsigned char* bytes);

} // namespace vyr::MaterialTranslation::baking
