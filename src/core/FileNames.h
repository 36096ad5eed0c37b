#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace vyr::MaterialTranslation::core
{

/// What follows the last "/" or "\" of a path.
std::string_view lastComponent(std::string_view path);

/// Whether a file name could reach something else than a file of that name in its folder on some
/// system: empty, ".", "..", with a NUL or a drive, or the name of a device.
bool isTreacherous(std::string_view name);

/// The name as every common operating system takes it: without the characters that some refuse, no
/// dot or space at the end, and not too long. Mostly the name itself.
std::string portableName(std::string_view name);

/// A name of the converter's own making as every common operating system takes it: portableName, and
/// not the name of a device.
std::string safeName(std::string_view name);

/// Names that were given out in one folder. Upper and lower case do not keep two names apart, be
/// they Latin, Greek or Cyrillic letters.
class FileNames
{
  public:
    /// The name, or the name with "-2", "-3"... before its extension, whichever is the first that was
    /// not given out and that `isFree` agrees to; it is then taken.
    std::string take(const std::string& name,
                     const std::function<bool(const std::string&)>& isFree = {});

  private:
    std::set<std::string> _taken;
};

} // namespace vyr::MaterialTranslation::core
