#include <MaterialTranslation/DocumentIO.h>

#include <MaterialXFormat/XmlIo.h>

#include "core/ReplaceFile.h"

namespace vyr::MaterialTranslation
{

std::string documentToXml(const MaterialX::DocumentPtr& document)
{
    return MaterialX::writeToXmlString(document);
}

void writeDocumentFile(const MaterialX::DocumentPtr& document, const std::filesystem::path& file)
{
    core::writeFileAtomically(file, documentToXml(document));
}

void writeFileAtomically(const std::filesystem::path& file, std::string_view bytes)
{
    core::writeFileAtomically(file, bytes);
}

} // namespace vyr::MaterialTranslation
