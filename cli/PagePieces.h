#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <MaterialTranslation/Bakes.h>

#include "Json.h"

/// @file
/// The data of a page that shows materials. A page from the file system may read no files but load scripts: each
/// piece of the data is one, which hands its content to the page.
namespace vyr::cli
{

/// @throws std::runtime_error naming the file.
std::string textOfFile(const std::filesystem::path& file);
void makeFolder(const std::filesystem::path& folder);

/// A name for what the text describes: a letter and a hash.
std::string keyOf(char kind, std::string_view text);

/// The folder of the pieces. What cannot be written throws std::runtime_error.
class Pieces
{
  public:
    /// @param page folder of the page.
    explicit Pieces(const std::filesystem::path& page);

    void write(const std::string& name, const JsonDocument& content) const;

    /// @param json an expression of the page's language too.
    void writeJson(const std::string& name, std::string_view json) const;

    bool has(const std::string& name) const;

    /// Keeps a piece of a name made by keyOf('i') or keyOf('m') when pruned.
    void keep(const std::string& name) { _kept.insert(name + ".js"); }

    /// Removes those of earlier runs that were not kept.
    void prune() const;

  private:
    std::filesystem::path fileOf(const std::string& name) const;

    std::filesystem::path _folder;
    std::set<std::string> _kept;
};

/// What became of an image.
struct ImagePiece
{
    /// Empty when there is none.
    std::string name;
    /// Why, if nobody has told yet.
    std::string problem;
};

/// The images of a page, no larger than a page needs them. Each is made once, in later runs only when its file has
/// changed.
class ImagePieces
{
  public:
    /// @param pieces borrowed.
    ImagePieces(Pieces& pieces, const MaterialTranslation::ImageLimits& limits)
        : _pieces(pieces), _limits(limits)
    {
    }

    void add(const std::filesystem::path& file);

    /// Makes all that were added, on several threads.
    void make(std::size_t workers);

    const ImagePiece& operator[](const std::filesystem::path& file) const { return _made.at(file); }

  private:
    ImagePiece make(const std::filesystem::path& file) const;

    Pieces& _pieces;
    MaterialTranslation::ImageLimits _limits;
    std::vector<std::filesystem::path> _files;
    std::map<std::filesystem::path, ImagePiece> _made;
};

} // namespace vyr::cli
