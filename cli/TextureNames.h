#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "TextureSets.h"

/// @file
/// What the names of image files tell of their textures.
namespace vyr::cli
{

/// A word of a name, and the slot that it means.
struct Word
{
    std::string_view text;
    Slot slot;
    /// Why an image of no slot is left.
    const char* reason = "";
};

/// A way to read a name: a word of the table, and the rest.
struct NameReading
{
    /// Null: none.
    const Word* word = nullptr;
    /// Of two images of a slot, that of the lower rank is taken.
    std::size_t rank = 0;
    /// What names the set, without regard to case.
    std::string key;
    /// The same for people.
    std::string shown;
    /// Whether the word is a single letter, which counts only where several images have the rest of it.
    bool isLetter = false;
};

/// From those whose colours every reader takes as they are meant.
constexpr std::string_view imageExtensions[] = {".png", ".jpg", ".jpeg", ".webp", ".bmp",
                                                ".tga", ".tif", ".tiff", ".exr",  ".hdr"};

/// All ways to read a file's name without its extension, what comes last in it first; at the end the name without a
/// word.
std::vector<NameReading> readingsOf(std::string_view name);

/// Pixels of the longer side that a name tells ("2k", "2048", "2048x2048"); 0 when it tells none.
std::uint32_t resolutionIn(std::string_view name);

} // namespace vyr::cli
