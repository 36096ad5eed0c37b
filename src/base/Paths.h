#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

/// @file
/// Paths and file names. Texts are UTF-8 on every system.
namespace vyr::base
{

/// The path that a text names.
std::filesystem::path pathFromUtf8(std::string_view text);

/// A path as a text, with the separators of the system.
std::string utf8FromPath(const std::filesystem::path& path);

/// A path as a text, with forward slashes on every system, as documents have it.
std::string genericUtf8FromPath(const std::filesystem::path& path);

/// UTF-8 in the platform's wide form and back. A text that is not well formed throws
/// `std::system_error`.
std::wstring wideFromUtf8(std::string_view text);
std::string utf8FromWide(const std::wstring& text);

/// The absolute path without "." and, where that leads to the same place, without "..".
std::filesystem::path tidyAbsolute(const std::filesystem::path& path);

/// Whether there is an ordinary file, symbolic links followed.
bool isFile(const std::filesystem::path& path);

/// Whether both paths lead to one file or folder that exists.
bool isSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

/// One text for one place, however the way there and the case of the name are written, and whether or not
/// something is there. Links on the way are followed, one in the place itself is not.
std::string placeKey(const std::filesystem::path& path);

/// The keys of the place and, if it is a link, of every place where that leads.
std::vector<std::string> placeKeys(const std::filesystem::path& path);

/// What follows the last "/" or "\" of a path.
std::string_view lastComponent(std::string_view path);

/// Whether some systems reserve the name, with any extension, for a device ("con", "lpt1.png").
bool isDeviceName(std::string_view name);

/// Whether a file name could reach something else than a file of that name in its folder on some
/// system: empty, ".", "..", with a NUL or a drive, or the name of a device.
bool isUnsafeName(std::string_view name);

/// The name as every common operating system takes it: without the characters that some refuse, no
/// dot or space at the end, and not too long. Mostly the name itself.
std::string portableName(std::string_view name);

/// A name of our own making as every common operating system takes it: portableName, and not the name of
/// a device.
std::string safeName(std::string_view name);

/// The name with "-<number>" before its extension.
std::string numberedName(const std::string& name, int number);

/// `name`, or the first numberedName from 2 on, that `isFree` agrees to.
template <class IsFree> std::string firstFreeName(const std::string& name, IsFree isFree)
{
    std::string candidate = name;
    for (int number = 2; !isFree(candidate); ++number)
        candidate = numberedName(name, number);
    return candidate;
}

/// Names that were given out in one folder. Upper and lower case do not keep two names apart.
class UniqueNames
{
  public:
    /// The firstFreeName that was not given out and that `isFree` agrees to; it is then taken.
    template <class IsFree> std::string take(const std::string& name, IsFree isFree)
    {
        return firstFreeName(name, [&](const std::string& candidate)
                             { return isFree(candidate) && give(candidate); });
    }

  private:
    /// @return whether it was not given out yet.
    bool give(const std::string& name);

    std::set<std::string> _taken;
};

} // namespace vyr::base
