#include "PagePieces.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>

#include <MaterialTranslation/BrowserImage.h>

#include "Console.h"
#include "base/Hash.h"
#include "base/Paths.h"
#include "base/WriteFile.h"
#include "batch/OrderedRun.h"
#include "batch/Output.h"

namespace vyr::cli
{
namespace
{

namespace fs = std::filesystem;

/// Pixels of the longer side of an image.
constexpr int largest = 1024;

/// Whether a file of the folder of pieces is one of an earlier run: "m" or "i" and a hash.
bool isPiece(const std::string& name)
{
    constexpr std::string_view digits = "0123456789abcdef";
    return name.size() == 36 && (name[0] == 'm' || name[0] == 'i') && name.ends_with(".js") &&
           name.find_first_not_of(digits, 1) == 33;
}

std::string base64(std::span<const unsigned char> bytes)
{
    constexpr std::string_view digits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3)
    {
        const std::span<const unsigned char> group =
            bytes.subspan(i, std::min<std::size_t>(3, bytes.size() - i));
        unsigned bits = 0;
        for (std::size_t k = 0; k < 3; ++k)
            bits = bits << 8 | (k < group.size() ? group[k] : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            text += k <= group.size() ? digits[bits >> (18 - 6 * k) & 63] : '=';
    }
    return text;
}

} // namespace

std::string textOfFile(const fs::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    if (!stream.is_open() || stream.bad())
        throw std::runtime_error(base::utf8FromPath(file) + ": cannot be read");
    return text;
}

void makeFolder(const fs::path& folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error)
        throw std::runtime_error(base::utf8FromPath(folder) + ": " + error.message());
}

/// A name for what the text describes.
std::string keyOf(char kind, std::string_view text)
{
    return kind + base::hashOf(text);
}

Pieces::Pieces(const fs::path& page) : _folder(page / "data")
{
    makeFolder(_folder);
}

void Pieces::write(const std::string& name, const JsonDocument& content) const
{
    writeJson(name, content.text());
}

void Pieces::writeJson(const std::string& name, std::string_view json) const
{
    const fs::path file = fileOf(name);
    const std::string script = fmt::format("preview.take(\"{}\", {});\n", name, json);
    if (const std::error_code error = base::writeFile(file, script).error)
        throw std::runtime_error(batch::writeFailure(base::utf8FromPath(file), error.message()));
}

bool Pieces::has(const std::string& name) const
{
    return base::isFile(fileOf(name));
}

void Pieces::prune() const
{
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(_folder, ignored))
        if (const std::string name = base::utf8FromPath(entry.path().filename());
            isPiece(name) && !_kept.contains(name))
            fs::remove(entry.path(), ignored);
}

fs::path Pieces::fileOf(const std::string& name) const
{
    return _folder / base::pathFromUtf8(name + ".js");
}

void ImagePieces::add(const fs::path& file)
{
    if (_made.try_emplace(file).second)
        _files.push_back(file);
}

void ImagePieces::make(std::size_t workers)
{
    const auto work = [&](std::size_t /*worker*/, std::size_t step) { return make(_files[step]); };
    const auto deliver = [&](std::size_t step, const ImagePiece& made)
    { _made[_files[step]] = made; };
    batch::OrderedRun(_files.size(), work, deliver, stopRequested)
        .on(std::clamp<std::size_t>(_files.size(), 1, workers));
    for (const auto& [file, made] : _made)
        _pieces.keep(made.name);
}

/// The name changes with the file.
ImagePiece ImagePieces::make(const fs::path& file) const
{
    std::error_code error;
    const auto size = fs::file_size(file, error);
    const auto time = fs::last_write_time(file, error);
    if (error)
        return {}; // of which the conversion has told
    const std::string name = keyOf('i', fmt::format("{} {} {} {}", base::utf8FromPath(file), size,
                                                    time.time_since_epoch().count(), largest));
    if (_pieces.has(name))
        return {name, {}};
    const auto image =
        MaterialTranslation::browserImage(file, largest, {.limits = _limits, .threads = 1});
    if (!image.success)
        return {{}, "the picture lacks an image: " + image.message};
    _pieces.writeJson(name, fmt::format("\"data:{};base64,{}\"", image.type, base64(image.bytes)));
    return {name, {}};
}

} // namespace vyr::cli
