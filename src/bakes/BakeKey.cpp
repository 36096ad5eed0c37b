#include "bakes/BakeKey.h"

#include <bit>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string_view>
#include <type_traits>
#include <variant>

#include "bakes/patterns/Kinds.h"
#include "base/Hash.h"
#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::MaterialTranslation::bakes
{

namespace fs = std::filesystem;

namespace
{

/// Collects values, each of which can be told from what comes before and after it. Records are taken apart by
/// structured bindings, so that one with a further field does not compile.
class Key
{
  public:
    explicit Key(const ImageLimits& limits) : _limits(limits) { add(bakeVersion); }

    /// Empty when a source cannot be read.
    std::string digits() const { return _complete ? _hash.digits() : std::string(); }

    void add(const BumpBake& bake)
    {
        const auto& [image, scaleX, scaleY] = bake;
        add("bump");
        addSource(image);
        add(scaleX);
        add(scaleY);
    }

    void add(const NoiseBumpBake& bake)
    {
        const auto& [noise, bumpAmount] = bake;
        // What limits a bake and how many threads make it does not show in the pixels.
        const auto& [width, height, type, color1, color2, size, low, high, levels, phase, limits,
                     threads] = noise;
        add("noise");
        add(width);
        add(height);
        add(base::foldCase(type));
        add(color1);
        add(color2);
        for (const float value : {size, low, high, levels, phase, bumpAmount})
            add(value);
    }

    void add(const PatternBake& bake)
    {
        const auto& [pattern, use, strength] = bake;
        add("pattern");
        add(pattern);
        add(static_cast<int>(use));
        add(strength);
    }

  private:
    void add(const Pattern& pattern)
    {
        const auto& [kind, values, width, height, placement, images] = pattern;
        add(proceduralTextures()[kind].name);
        add(values.rows);
        add(width);
        add(height);
        add(placement);
        add(images);
    }

    void add(const ColorImage& image)
    {
        const auto& [property, file, pattern, placement] =
            image; // the property names it in messages alone
        add(pattern);
        if (!pattern)
            addSource(file);
        add(placement);
    }

    void add(const ImagePlacement& placement)
    {
        const auto& [offset, size, uvOffset, uvScale, repeats, degrees] = placement;
        for (const auto& pair : {offset, size, uvOffset, uvScale})
            add(pair);
        add(repeats);
        add(degrees);
    }

    template <class T> void add(const std::shared_ptr<T>& value)
    {
        add(static_cast<int>(value != nullptr));
        if (value)
            add(*value);
    }

    template <class T> void add(const std::optional<T>& value)
    {
        add(static_cast<int>(value.has_value()));
        if (value)
            add(*value);
    }

    template <class T> void add(const std::vector<T>& values)
    {
        add(static_cast<int>(values.size()));
        for (const T& value : values)
            add(value);
    }

    template <class T, std::size_t N> void add(const std::array<T, N>& values)
    {
        for (const T& value : values)
            add(value);
    }

    void add(float value) { add(std::bit_cast<std::int32_t>(value)); }
    void add(bool value) { add(static_cast<int>(value)); }

    void add(std::int32_t value)
    {
        const auto bits = static_cast<std::uint32_t>(value);
        const char bytes[] = {static_cast<char>(bits), static_cast<char>(bits >> 8U),
                              static_cast<char>(bits >> 16U), static_cast<char>(bits >> 24U)};
        _hash.add({bytes, sizeof bytes});
    }

    void add(const std::string& text)
    {
        add(static_cast<int>(text.size()));
        _hash.add(text);
    }
    void add(const char* text) { add(std::string(text)); }

    void addSource(const fs::path& file)
    {
        const std::optional<std::string> content = base::hashOfFile(file, _limits.decodedBytes);
        _complete = _complete && content;
        add(content.value_or(std::string()));
        add(base::foldCase(base::utf8FromPath(file.extension())));
    }

    const ImageLimits& _limits;
    base::Hash _hash;
    bool _complete = true;
};

std::string bigEndian(std::uint32_t value)
{
    const auto byte = [value](unsigned shift) { return static_cast<char>(value >> shift); };
    return {byte(24), byte(16), byte(8), byte(0)};
}

/// PNG's checksum, of a few bytes.
std::uint32_t checksumOf(std::string_view bytes)
{
    std::uint32_t sum = 0xFFFFFFFFU;
    for (const char byte : bytes)
    {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum >> 1U) ^ ((sum & 1U) * 0xEDB88320U);
    }
    return ~sum;
}

/// The chunk behind the header of a file that has all these bytes besides.
std::string chunkOf(const std::string& key, std::string_view before, std::string_view behind)
{
    using namespace std::string_view_literals;
    base::Hash all;
    all.add(before);
    all.add(behind);
    const std::string text = std::string("vyr_bake\0"sv) + key + " " + all.digits();
    const std::string chunk = "tEXt" + text;
    return bigEndian(static_cast<std::uint32_t>(text.size())) + chunk +
           bigEndian(checksumOf(chunk));
}

/// The mark of a PNG file and its header, whose size never differs.
constexpr std::size_t headerSize = 33;

bool isPng(std::string_view bytes)
{
    return bytes.starts_with("\x89PNG\r\n\x1A\n") && bytes.size() > headerSize;
}

} // namespace

std::string keyOf(const MaterialBake& bake, const ImageLimits& limits)
{
    Key key(limits);
    std::visit([&](const auto& record) { key.add(record); }, bake);
    return key.digits();
}

void addKey(std::vector<unsigned char>& file, const std::string& key)
{
    const std::string_view bytes = base::textOf(file);
    if (!isPng(bytes))
        return;
    const std::string chunk = chunkOf(key, bytes.substr(0, headerSize), bytes.substr(headerSize));
    file.insert(file.begin() + headerSize, chunk.begin(), chunk.end());
}

bool hasKey(const fs::path& file, const std::string& key)
{
    std::error_code error;
    if (!fs::is_regular_file(fs::symlink_status(file, error)))
        return false;
    const std::size_t chunkSize = chunkOf(key, {}, {}).size();
    std::ifstream stream(file, std::ios::binary);
    std::string start(headerSize + chunkSize, '\0');
    stream.read(start.data(), static_cast<std::streamsize>(start.size()));
    const std::string_view header = std::string_view(start).substr(0, headerSize);
    const std::string_view chunk = std::string_view(start).substr(headerSize);
    if (!stream || !isPng(start) || chunk.find(key) == chunk.npos)
        return false;
    const std::uint64_t size = fs::file_size(file, error);
    if (error)
        return false;
    std::string rest(static_cast<std::size_t>(size - start.size()), '\0');
    stream.read(rest.data(), static_cast<std::streamsize>(rest.size()));
    return stream && chunk == chunkOf(key, header, rest);
}

} // namespace vyr::MaterialTranslation::bakes
