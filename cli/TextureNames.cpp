#include "TextureNames.h"

#include <algorithm>
#include <bit>
#include <iterator>
#include <optional>
#include <utility>

#include "base/Text.h"

namespace vyr::cli
{
namespace
{

using enum Slot;

constexpr const char* occlusion = "ambient occlusion, which renderers find themselves";
constexpr const char* packed =
    "several numbers in one image, whose channels no property takes one by one";
constexpr const char* specular = "reflectance, which no property takes as an image; "
                                 "that of metals is their base colour";
constexpr const char* unknown = "no property takes it";
constexpr const char* picture = "a picture of the material";

/// Words that stand together in a name count as one ("base color"), without numbers and "map" at their end. Of two
/// images of a slot, that of the earlier word is taken.
constexpr Word words[] = {
    {"basecolor", BaseColor},
    {"basecolour", BaseColor},
    {"albedotransparency", BaseColor},
    {"albedo", BaseColor},
    {"diffuse", BaseColor},
    {"color", BaseColor},
    {"colour", BaseColor},
    {"diff", BaseColor},
    {"dif", BaseColor},
    {"alb", BaseColor},
    {"col", BaseColor},
    {"bc", BaseColor},
    {"roughness", Roughness},
    {"rough", Roughness},
    {"rgh", Roughness},
    {"glossiness", Gloss},
    {"gloss", Gloss},
    {"smoothness", Gloss},
    {"metalness", Metal},
    {"metallic", Metal},
    {"metal", Metal},
    {"met", Metal},
    {"normalgl", Normal},
    {"normalogl", Normal},
    {"normalopengl", Normal},
    {"norgl", Normal},
    {"nrmgl", Normal},
    {"normal", Normal},
    {"normals", Normal},
    {"nrm", Normal},
    {"nor", Normal},
    {"norm", Normal},
    {"nml", Normal},
    {"normaldx", NormalDown},
    {"normaldirectx", NormalDown},
    {"nordx", NormalDown},
    {"nrmdx", NormalDown},
    {"height", Height},
    {"displacement", Height},
    {"displace", Height},
    {"disp", Height},
    {"bump", Height},
    {"opacity", Opacity},
    {"alpha", Opacity},
    {"cutout", Opacity},
    {"opacitymask", Opacity},
    {"alphamask", Opacity},
    {"mask", Opacity},
    {"emission", Emission},
    {"emissive", Emission},
    {"emit", Emission},
    {"ambientocclusion", Other, occlusion},
    {"occlusion", Other, occlusion},
    {"ao", Other, occlusion},
    {"arm", Other, packed},
    {"orm", Other, packed},
    {"rma", Other, packed},
    {"metallicroughness", Other, packed},
    {"metallicsmoothness", Other, packed},
    {"specularsmoothness", Other, packed},
    {"occlusionroughnessmetallic", Other, packed},
    {"specular", Other, specular},
    {"specularlevel", Other, specular},
    {"spec", Other, specular},
    {"reflection", Other, specular},
    {"refl", Other, specular},
    {"cavity", Other, unknown},
    {"curvature", Other, unknown},
    {"fuzz", Other, unknown},
    {"thickness", Other, unknown},
    {"translucency", Other, unknown},
    {"transparency", Other, unknown},
    {"subsurface", Other, unknown},
    {"sss", Other, unknown},
    {"preview", Other, picture},
    {"render", Other, picture},
    {"sphere", Other, picture},
    {"thumb", Other, picture},
    {"thumbnail", Other, picture},
};

/// These end a name.
constexpr Word letters[] = {
    {"d", BaseColor}, {"r", Roughness}, {"m", Metal}, {"n", Normal}, {"h", Height}, {"e", Emission},
};

/// The longest word of the table has so many parts: "occlusion roughness metallic".
constexpr std::size_t mostParts = 3;

template <class Words> const Word* find(const Words& table, std::string_view text)
{
    const auto* found = std::ranges::find(table, text, &Word::text);
    return found == std::end(table) ? nullptr : found;
}

std::string lower(std::string_view text)
{
    std::string result(text);
    std::ranges::transform(result, result.begin(), base::toAsciiLower);
    return result;
}

bool isLetterOrDigit(char c)
{
    return base::isAsciiAlphanumeric(c) || static_cast<unsigned char>(c) >= 0x80;
}

bool isUpper(char c)
{
    return c >= 'A' && c <= 'Z';
}

/// The parts of a name: "Oak_BaseColor-1K" has four.
std::vector<std::string> partsOf(std::string_view name)
{
    std::vector<std::string> parts;
    char last = '_';
    for (const char c : name)
    {
        const bool begins =
            !isLetterOrDigit(last) || (isUpper(c) && !isUpper(last) && !base::isAsciiDigit(last));
        if (isLetterOrDigit(c) && begins)
            parts.emplace_back();
        if (isLetterOrDigit(c))
            parts.back() += c;
        last = c;
    }
    return parts;
}

std::string_view withoutEnd(std::string_view text, std::string_view end)
{
    if (text.ends_with(end))
        text.remove_suffix(end.size());
    return text;
}

std::string_view withoutNumber(std::string_view text)
{
    while (!text.empty() && base::isAsciiDigit(text.back()))
        text.remove_suffix(1);
    return text;
}

const Word* wordOf(std::string_view text)
{
    for (const std::string_view form :
         {text, withoutNumber(text), withoutEnd(text, "map"), withoutNumber(withoutEnd(text, "k"))})
        if (const Word* const word = find(words, form))
            return word;
    return nullptr;
}

/// Pixels of the longer side that a part of a name tells: "2k", "2048", "2048x2048"; 0 when it tells none.
std::uint32_t resolutionOf(std::string_view part)
{
    const std::string_view number = withoutEnd(part.substr(0, part.find('x')), "px");
    if (const auto thousands = base::numberFromText<std::uint32_t>(withoutEnd(number, "k"));
        thousands && number.ends_with('k') && *thousands <= 64)
        return *thousands * 1024;
    const auto pixels = base::numberFromText<std::uint32_t>(number);
    const bool likely =
        pixels && *pixels >= 256 && *pixels <= 65536 && std::has_single_bit(*pixels);
    return likely ? *pixels : 0;
}

/// Whether a part of a name tells sizes and formats, which images of one set need not share.
bool isTechnical(std::string_view part)
{
    const bool isFormat = std::ranges::any_of(imageExtensions, [&](std::string_view e)
                                              { return e.substr(1) == part; });
    const auto counts = [&](std::string_view what)
    { return part.starts_with(what) && withoutNumber(part) == what && part != what; };
    return isFormat || resolutionOf(part) > 0 || part == "8bit" || part == "16bit" ||
           part == "32bit" || counts("var") || counts("lod");
}

/// Letters come after all words, and a name without a word last.
std::size_t rankOf(const Word* word)
{
    const auto* found = word ? find(words, word->text) : nullptr;
    if (found)
        return static_cast<std::size_t>(found - std::begin(words));
    return std::size(words) + (word ? 0 : 1);
}

/// How a name reads with the parts from `first` up to `end` as the word.
NameReading readingOf(const std::vector<std::string>& parts, std::size_t first, std::size_t end,
                      const Word* word, bool isLetter = false)
{
    NameReading reading{word, rankOf(word), {}, {}, isLetter};
    for (std::size_t i = 0; i < parts.size(); ++i)
        if ((i < first || i >= end) && !isTechnical(lower(parts[i])))
        {
            const std::string part = lower(parts[i]);
            reading.key += part + ' ';
            // "Oak_COL_2K_METALNESS": at the end behind a size, that is how a set is meant to be shaded.
            const bool isMethod =
                i > 0 && i + 1 == parts.size() && isTechnical(lower(parts[i - 1])) && wordOf(part);
            if (!isMethod)
                reading.shown += (reading.shown.empty() ? "" : " ") + parts[i];
        }
    return reading;
}

} // namespace

std::vector<NameReading> readingsOf(std::string_view name)
{
    const std::vector<std::string> parts = partsOf(name);
    std::vector<NameReading> readings;
    std::size_t last = parts.size();
    while (last > 0 && isTechnical(lower(parts[last - 1])))
        --last;
    for (std::size_t end = parts.size(); end > 0; --end)
    {
        std::string text;
        std::optional<NameReading> longest;
        for (std::size_t first = end; first > 0 && end - first < mostParts; --first)
        {
            text.insert(0, lower(parts[first - 1]));
            if (const Word* const word = wordOf(text))
                longest = readingOf(parts, first - 1, end, word);
        }
        if (longest)
            readings.push_back(std::move(*longest));
        if (const Word* const letter =
                end == last ? find(letters, text = lower(parts[end - 1])) : nullptr)
            readings.push_back(readingOf(parts, end - 1, end, letter, true));
    }
    readings.push_back(readingOf(parts, 0, 0, nullptr));
    return readings;
}

std::uint32_t resolutionIn(std::string_view name)
{
    std::uint32_t most = 0;
    for (const std::string& part : partsOf(name))
        most = std::max(most, resolutionOf(lower(part)));
    return most;
}

} // namespace vyr::cli
