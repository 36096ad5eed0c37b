#pragma once

/// @file
/// An asset library over JSON files. It implements the interfaces of `kelvor::platform::assets`, so that
/// materials can be kept in plain files and converted without a host application.
///
/// A program that links this library has `kelvor::platform::assets::GetIAssetLibraryManager` from it.
///
/// - **Texts** are UTF-8 on every system, file names included.
/// - **Lifetime.** All assets of one load share one store. It lives until the Library and every
///   reference to one of its assets (clones and connected assets) are gone; one reference that is kept
///   keeps the whole store.
/// - **Threads.** What was loaded never changes. Reading, cloning and releasing assets, and the const
///   operations of Library, are safe from several threads at once, also on the same object; so is
///   load().
/// - **Errors** of the files are returned, never thrown. Only running out of memory throws.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <kelvor/platform/assets/IAssetInstance.h>
#include <vyr/assetlib/Overlays.h>

namespace vyr::assetlib
{

struct LoadOptions;
struct LoadResult;

/// One material of a loaded library.
struct Material
{
    /// Borrowed: lives as long as the Library. Whoever needs it longer clones it.
    const kelvor::platform::assets::IAssetInstance* asset = nullptr;
    /// Not empty, unique in the library.
    std::string id;
    /// The schema's name, such as "GenericSchema".
    std::string schema;
    /// The file as it was named to load().
    std::string file;
    /// JSON pointer of the material in its file, such as "/materials/3".
    std::string pointer;
};

/// What one or several files hold. Movable; an object that was moved from may only be destroyed or
/// assigned to.
class Library
{
  public:
    Library(Library&& other) noexcept;
    Library& operator=(Library&& other) noexcept;
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library();

    /// In the order of the files, then in the order in the file. Assets of the files' "textures" are
    /// not among them; materials reach those through their connections.
    const std::vector<Material>& materials() const;

    /// The material of that id; null when there is none.
    const Material* findMaterial(const std::string& id) const;

    /// In the order of the files, then in the order in the file.
    const std::vector<Overlay>& overlays() const;

    /// Number of references to assets (clones and connected assets) that were handed out and not
    /// yet given back. 0 tells that a converter kept none.
    std::size_t referenceCount() const;

  private:
    friend LoadResult load(const std::vector<std::string>& files, const LoadOptions& options);
    class Content;
    explicit Library(std::unique_ptr<const Content> content);
    std::unique_ptr<const Content> _content;
};

/// How load() works.
struct LoadOptions
{
    /// Folders in which image references are looked up last, in order, after the file's own folder
    /// and the file's `texturePaths`. Relative ones are relative to the working folder at the time
    /// of the load. A folder that does not exist holds nothing.
    std::vector<std::string> texturePaths;
    /// How many threads may read a file with many materials; the result is the same.
    unsigned threads = 1;
    /// Whether the name "-" stands for standard input, whose own folder is the working folder.
    bool standardInput = false;
};

/// A reason why files were not taken.
struct LoadError
{
    /// The file as it was named to load().
    std::string file;
    /// The place in the file, both from 1; the column counts characters, not bytes. 0 when the error is
    /// of the file as a whole.
    std::size_t line = 0;
    std::size_t column = 0;
    /// JSON pointer of the place when the JSON itself is whole; empty for its outermost value.
    std::string pointer;
    /// What was expected, in English, without a line break.
    std::string message;

    /// One line without its end, one of
    /// `walls.json:12:5: /materials/3/properties/generic_diffuse/value: expected 3 or 4 numbers`,
    /// `walls.json:12:5: broken JSON: ...`, `walls.json: no such file`.
    std::string format() const;
};

/// Something that was taken, but probably not as its author meant it: an image that was only found
/// under a name that differs in upper and lower case.
struct LoadWarning
{
    /// The file as it was named to load().
    std::string file;
    /// The place in the file, as in LoadError.
    std::size_t line = 0;
    std::size_t column = 0;
    std::string pointer;
    /// Id of the asset, for an inline asset that of the asset around it; the name of an overlay.
    std::string asset;
    /// Name of the property, or the key of an overlay's texture.
    std::string property;
    std::string message;

    /// One line without its end: file, place, pointer, message, as in LoadError.
    std::string format() const;
};

/// What load() yields: a library, or all reasons why there is none.
struct LoadResult
{
    /// Empty exactly when there are errors.
    std::optional<Library> library;
    /// In the order of the files and of the places in them. Broken JSON hides what else is wrong with its file, and connections
    /// to ids that are missing while a file could not be read are not reported.
    std::vector<LoadError> errors;
    /// In the same order; also there when the load failed.
    std::vector<LoadWarning> warnings;
};

/// Loads several files together: their assets share one space of ids, and connections may cross
/// files.
///
/// Image references are looked up here, once; the assets then answer absolute paths, with forward
/// slashes on every system. A reference that is not found as written is tried with forward slashes
/// for backward ones, without a dot at its end, and at last without regard to upper and lower case,
/// where it counts as found when exactly one file fits (with a warning). `file:` references are
/// decoded first.
/// @param files in the order in which their materials are listed. None is fine: an empty library.
LoadResult load(const std::vector<std::string>& files, const LoadOptions& options = {});

/// Sets the folders in which the path resolver of this process's library manager looks for relative
/// references; none at first. The resolver also answers for every absolute path of a file that
/// exists. Image references of loaded files need none of this.
///
/// Safe from several threads, also while others resolve.
void setResolverFolders(std::vector<std::string> folders);

} // namespace vyr::assetlib
