#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace vyr::cli
{

/// Keeps apart the documents that are written into one folder.
class DocumentNames
{
  public:
    /// Takes a name for an owner.
    /// @param owner how messages call it, for example `material "a" (walls.json)`.
    /// @return why the name cannot be had, empty when it is taken: another owner has it (case does
    ///         not count, since some file systems ignore it), or some system reserves it for a device.
    std::string claim(const std::string& name, const std::string& owner);

  private:
    /// From the name in lower case.
    std::map<std::string, std::string> _owners;
};

/// The file name of a document.
std::filesystem::path documentFile(const std::string& name);

/// A name for a document from any text, by the rule of material names: the ASCII letters and digits
/// of the text, with "M" before a leading digit; empty when it has none.
std::string documentName(const std::string& text);

} // namespace vyr::cli
