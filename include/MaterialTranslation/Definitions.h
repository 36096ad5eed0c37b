#pragma once

#include <filesystem>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Export.h>

/// @file
/// The definitions of the nodes that documents use: MaterialX's standard library and the kvor nodes.

namespace vyr::MaterialTranslation
{

/// Which definitions a MaterialX program has loaded.
enum class DefinitionSet
{
    /// MaterialX's standard library and the kvor nodes.
    All,
    /// MaterialX's standard library alone.
    Standard,
};

/// Where the definitions are read from. An empty folder stands for the place where it is expected.
struct DefinitionFolders
{
    /// MaterialX's data library: the folder that has `stdlib`, `pbrlib`, `bxdf`, ... in it. Expected
    /// where the MaterialX that is loaded into the process was installed with it.
    std::filesystem::path standard;
    /// The folder with the definitions of the kvor nodes, `kvor_*.mtlx`. Expected in
    /// `share/vyr_mtlx_converter/libraries/kvor` beside a folder that this library is in.
    std::filesystem::path kvor;
};

/// Chooses the folders that definitions are read from. Libraries that were handed out before stay as
/// they are; the next use reads anew. Safe to call from any thread.
VYR_MTLX_API void setDefinitionFolders(const DefinitionFolders& folders);

/// The folders that definitions are read from, none of them empty.
/// @throws std::runtime_error when one that was not chosen is not where it is expected.
VYR_MTLX_API DefinitionFolders definitionFolders();

/// The definitions as a data library for documents (`Document::setDataLibrary`). Each set is read once
/// in a process, at its first use, and shared; nothing of MaterialX's own state is changed. Safe to
/// call, and to read from, on any thread.
/// @throws std::runtime_error when a folder does not hold the definitions, and naming the file when
///         one cannot be read.
VYR_MTLX_API MaterialX::ConstDocumentPtr definitionLibrary(DefinitionSet set = DefinitionSet::All);

} // namespace vyr::MaterialTranslation
