#include "PreviewPictures.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>

#include <fmt/format.h>

#include "Browser.h"
#include "Console.h"
#include "Installed.h"
#include "base/Paths.h"
#include "base/Text.h"
#include "base/WriteFile.h"
#include "batch/Output.h"

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

/// Pictures that a browser draws before it is started anew, which bounds its memory.
constexpr std::size_t batch = 50;

std::optional<std::string> bytesFromBase64(std::string_view text)
{
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    unsigned bits = 0;
    unsigned count = 0;
    while (text.ends_with('='))
        text.remove_suffix(1);
    for (const char c : text)
    {
        const std::size_t digit = digits.find(c);
        if (digit == digits.npos)
            return std::nullopt;
        bits = (bits << 6 | static_cast<unsigned>(digit)) & 0xFFFFFF;
        count += 6;
        if (count >= 8)
            bytes += static_cast<char>(bits >> (count -= 8) & 0xFF);
    }
    return bytes;
}

/// Takes the pictures out of the text of a page, in which each is `<i id="picture-7">base64</i>`; of a material that
/// cannot be drawn it has a class and the reason.
class PictureReader
{
  public:
    PictureReader(const fs::path& folder, const std::vector<PageItem>& items)
        : _folder(folder), _items(items)
    {
    }

    void take(std::string_view text)
    {
        _text += text;
        constexpr std::string_view end = "</i>";
        while (true)
        {
            const std::size_t start = _text.find(mark);
            const std::size_t stop = start == _text.npos ? start : _text.find(end, start);
            if (stop == _text.npos)
                break;
            takeElement(std::string_view(_text).substr(start, stop - start));
            _text.erase(0, stop + end.size());
        }
        // What is no picture is not kept.
        if (_text.find(mark) == _text.npos && _text.size() > mark.size())
            _text.erase(0, _text.size() - mark.size());
    }

    std::size_t written() const { return _written; }
    bool failed() const { return _failed; }
    bool isDone(std::size_t item) const { return _done.contains(item); }

  private:
    void takeElement(std::string_view element)
    {
        element.remove_prefix(mark.size());
        const auto number = base::numberFromText<std::size_t>(element.substr(0, element.find('"')));
        const std::size_t tag = element.find('>');
        if (!number || *number >= _items.size() || tag == element.npos)
            return;
        const PageItem& item = _items[*number];
        _done.insert(*number);
        const std::string_view content = element.substr(tag + 1);
        const bool drawn = element.substr(0, tag).find("failed") == element.npos;
        const auto bytes = drawn ? bytesFromBase64(content) : std::nullopt;
        const std::string file = base::utf8FromPath(_folder / (item.name + ".png"));
        if (!bytes)
            return tell(item.name + ": cannot be drawn: " + std::string(content));
        if (const std::error_code error = base::writeFile(base::pathFromUtf8(file), *bytes).error)
            return tell(batch::writeFailure(file, error.message()));
        ++_written;
    }

    void tell(const std::string& problem)
    {
        complain("vyr-mtlx: " + problem);
        _failed = true;
    }

    static constexpr std::string_view mark = "<i id=\"picture-";

    fs::path _folder;
    const std::vector<PageItem>& _items;
    std::string _text;
    std::set<std::size_t> _done;
    std::size_t _written = 0;
    bool _failed = false;
};

} // namespace

bool writePictures(const fs::path& page, const std::vector<PageItem>& items,
                   const std::string& program)
{
    if (!canDraw())
    {
        complain("vyr-mtlx: --pictures: what draws them is not installed");
        return false;
    }
    const fs::path browser = program.empty() ? findBrowser() : base::pathFromUtf8(program);
    if (browser.empty())
    {
        complain("vyr-mtlx: --pictures: there is no Chromium, Chrome or Edge on the search path, "
                 "which draws "
                 "them; --browser names one, and the page itself shows them in any browser");
        return false;
    }
    const fs::path folder = page / "pictures";
    std::error_code error;
    fs::create_directories(folder, error);
    PictureReader reader(folder, items);
    for (std::size_t first = 0; first < items.size() && !stopRequested(); first += batch)
    {
        const std::size_t end = std::min(first + batch, items.size());
        const std::string url =
            fmt::format("{}#pictures={}-{}", fileUrl(page / "index.html"), first, end);
        const std::string problem =
            printPage(browser, url, [&](std::string_view text) { reader.take(text); });
        const auto isMissing = [&](std::size_t i)
        { return !items[i].document.empty() && !reader.isDone(i); };
        bool allMissing = true;
        for (std::size_t i = first; i < end; ++i)
            allMissing = allMissing && isMissing(i);
        if (allMissing)
        {
            complain("vyr-mtlx: --pictures: " +
                     (problem.empty()
                          ? base::utf8FromPath(browser) + " has drawn nothing; can it show \"" +
                                base::utf8FromPath(page / "index.html") + "\"?"
                          : problem));
            return false;
        }
    }
    return !reader.failed();
}

} // namespace vyr::cli
