#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Export.h>

namespace vyr::MaterialTranslation
{

/// The inputs at or below an element that name a file: those of type "filename" that are not empty, in
/// document order.
/// @param root for example a document; not null.
VYR_MTLX_API std::vector<MaterialX::InputPtr> fileInputs(const MaterialX::ConstElementPtr& root);

/// A document as MaterialX XML text, with MaterialX's default write options.
/// @param document not null.
VYR_MTLX_API std::string documentToXml(const MaterialX::DocumentPtr& document);

/// The asset that a document in a file was made of, when that is another one: the identifier that a material of it
/// carries ("vyr_asset").
/// @param asset identifier of the asset that may have made it; empty for none.
/// @return empty also when there is no such file, or no document in it.
VYR_MTLX_API std::string otherAssetOf(const std::filesystem::path& file, const std::string& asset);

/// Writes a document to a ".mtlx" file as writeFileAtomically does; MaterialX's own `writeToXmlFile`
/// says nothing when it cannot write.
/// @param document not null.
/// @throws std::filesystem::filesystem_error
VYR_MTLX_API void writeDocumentFile(const MaterialX::DocumentPtr& document,
                                    const std::filesystem::path& file);

/// Writes a file as a whole: to a temporary name beside it (".vyr-<hash>-<n>.tmp"), then renamed, so
/// that nobody ever sees half of it and an existing file is only replaced by a whole one. A new file
/// gets its name when it is whole instead, where the system can. On failure the temporary file is
/// removed and an existing file stays as it was. The folder must exist. A temporary file that a killed
/// process left behind is taken over by the next writing of the file.
///
/// A file that has these bytes already is left alone, its time of last change too.
///
/// What is replaced is the name: a symbolic link there is not followed, other hard links keep the old
/// content, and the file has the permissions of a new one. Devices, pipes, sockets, and links to them
/// are refused.
/// @throws std::filesystem::filesystem_error
VYR_MTLX_API void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes);

} // namespace vyr::MaterialTranslation
