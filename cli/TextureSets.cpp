#include "TextureSets.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

#include "TextureNames.h"
#include "base/Paths.h"
#include "base/Text.h"

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

struct Image
{
    fs::path path;
    std::uint32_t resolution = 0;
    std::size_t extension = 0;
    std::vector<NameReading> readings;
};

std::optional<Image> imageOf(const fs::path& path)
{
    const std::string ending = base::utf8FromPath(path.extension());
    const auto* extension = std::ranges::find_if(imageExtensions, [&](std::string_view e)
                                                 { return base::equalsIgnoringCase(e, ending); });
    if (extension == std::end(imageExtensions))
        return std::nullopt;
    const std::string name = base::utf8FromPath(path.stem());
    return Image{path, resolutionIn(name),
                 static_cast<std::size_t>(extension - std::begin(imageExtensions)),
                 readingsOf(name)};
}

/// The images of one folder.
class Folder
{
  public:
    void add(Image image)
    {
        for (const NameReading& reading : image.readings)
            if (reading.word)
                ++_sharers[reading.key];
        _images.push_back(std::move(image));
    }

    /// @param name for images whose names have nothing but the word.
    void sortInto(TextureSets& result, const std::string& name)
    {
        std::map<std::string, std::vector<Choice>> groups;
        for (const Image& image : _images)
            if (const NameReading& reading = best(image); reading.word)
                groups[reading.key].push_back({&image, &reading});
        for (const Image& image : _images)
            if (const NameReading& reading = best(image); !reading.word)
                addUnnamed(image, reading, groups, result);
        for (auto& [key, choices] : groups)
            addSet(choices, name, result);
    }

  private:
    struct Choice
    {
        const Image* image;
        const NameReading* reading;
    };

    /// The reading whose rest most images share; of equal ones what comes last in the name.
    const NameReading& best(const Image& image) const
    {
        const NameReading* chosen = &image.readings.back();
        std::size_t most = 0;
        for (const NameReading& reading : image.readings)
        {
            const auto found = _sharers.find(reading.key);
            const std::size_t sharers = found == _sharers.end() ? 0 : found->second;
            if (sharers > most && (!reading.isLetter || sharers > 1))
                std::tie(chosen, most) = std::pair(&reading, sharers);
        }
        return *chosen;
    }

    /// "oak.jpg" beside "oak_bump.jpg" is its colour.
    static void addUnnamed(const Image& image, const NameReading& reading,
                           std::map<std::string, std::vector<Choice>>& groups, TextureSets& result)
    {
        static constexpr Word plain{"", Slot::BaseColor};
        static const NameReading asColor{&plain, {}, {}, {}};
        if (const auto group = groups.find(reading.key); group != groups.end())
            group->second.push_back({&image, &asColor});
        else
            result.left.push_back({image.path, "its name does not tell what it shows"});
    }

    static void addSet(std::vector<Choice>& choices, const std::string& name, TextureSets& result)
    {
        const auto order = [](const Choice& choice)
        {
            const auto& [image, reading] = choice;
            return std::tuple(reading->word->text.empty(), ~image->resolution, reading->rank,
                              image->extension, image->path);
        };
        std::ranges::stable_sort(choices, {}, order);
        TextureSet set;
        set.name = choices.front().reading->shown;
        if (set.name.empty())
            set.name = name;
        for (const auto& [image, reading] : choices)
        {
            const Word& word = *reading->word;
            if (word.slot == Slot::Other)
                result.left.push_back({image->path, word.reason});
            else if (const auto [taken, isNew] = set.images.try_emplace(word.slot, image->path);
                     !isNew)
                result.left.push_back({image->path, base::genericUtf8FromPath(taken->second) +
                                                        " is taken in its place"});
        }
        if (!set.images.empty())
            result.sets.push_back(std::move(set));
    }

    std::vector<Image> _images;
    /// How many images can be read so that this is the rest.
    std::map<std::string, std::size_t> _sharers;
};

} // namespace

TextureSets findTextureSets(std::vector<fs::path> files, const std::string& folder)
{
    std::ranges::sort(files, {}, base::genericUtf8FromPath);
    std::map<std::string, Folder> folders;
    for (const fs::path& file : files)
        if (std::optional<Image> image = imageOf(file))
            folders[base::genericUtf8FromPath(file.parent_path())].add(std::move(*image));
    TextureSets result;
    for (auto& [path, images] : folders)
        images.sortInto(result, path.empty() ? folder : std::string(base::lastComponent(path)));
    return result;
}

} // namespace vyr::cli
