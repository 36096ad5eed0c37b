// A host in the small: assets in memory, converted to one MaterialX document each.
//
//     host OUTPUT-FOLDER [IMAGE-FOLDER]

#include <cstddef>
#include <exception>
#include <filesystem>
#include <iostream>
#include <vector>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/DocumentIO.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <MaterialTranslation/Validation.h>
#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "MemoryLibrary.h"

namespace mt = vyr::MaterialTranslation;

namespace
{

host::Library library;

/// Properties have the names of the schema; what a material does not mention has a default.
std::vector<host::AssetPtr> makeMaterials()
{
    const host::AssetPtr oak = host::makeBitmap("oak_color.jpg");
    std::vector<host::AssetPtr> materials;
    materials.push_back(host::makeMaterial("paint-1", "Red Paint",
                                           {{"generic_diffuse", host::Color(0.5, 0.25, 0.125)},
                                            {"generic_glossiness", 0.5},
                                            {"generic_reflectivity_at_0deg", 0.25}}));
    materials.push_back(host::makeMaterial("metal-1", "Steel",
                                           {{"generic_diffuse", host::Color(0.6, 0.6, 0.6)},
                                            {"generic_is_metal", true},
                                            {"generic_reflectivity_at_0deg", 0.9},
                                            // Misspelt on purpose: the converter warns of it.
                                            {"generic_glosiness", 0.8}}));
    materials.push_back(host::makeMaterial("wood-1", "Oak", {{"generic_diffuse", oak}}));
    // A value of the wrong kind is an error: there is no document.
    materials.push_back(
        host::makeMaterial("broken-1", "Broken", {{"generic_glossiness", host::Text("very")}}));
    return materials;
}

/// What the last call had to say.
void printDiagnostics()
{
    for (const mt::Diagnostic& diagnostic : mt::lastDiagnostics())
        std::cerr << (diagnostic.severity == mt::Severity::Error ? "error" : "warning") << " ["
                  << mt::diagnosticCodeName(diagnostic.code) << "] " << diagnostic.asset << ": "
                  << diagnostic.property << ": " << diagnostic.text << '\n';
}

/// @return whether the document was written and is one that MaterialX can use.
bool convert(mt::MaterialXConverter& converter, const host::Asset& asset,
             const std::filesystem::path& folder)
{
    const auto name = converter.getMaterialName(asset);
    const auto document = MaterialX::createDocument();
    const bool converted = converter.TranslateToMaterialX(asset, name, document);
    printDiagnostics();
    if (!converted)
        return false;

    const std::vector<mt::ValidationMessage> messages = mt::validateDocument(document);
    for (const mt::ValidationMessage& message : messages)
        std::cerr << "invalid: " << name.str() << ": " << message.path << ": " << message.text
                  << '\n';

    const std::filesystem::path file = folder / (name.str() + ".mtlx");
    mt::writeDocumentFile(document, file);
    std::cout << file.string() << '\n';
    return messages.empty();
}

} // namespace

/// The one function that the converter leaves to its host. May return null: then nothing is resolved.
kelvor::platform::assets::IAssetLibraryManager* kelvor::platform::assets::GetIAssetLibraryManager()
{
    return &library;
}

int main(int argc, char** argv)
try
{
    if (argc < 2)
    {
        std::cerr << "usage: host OUTPUT-FOLDER [IMAGE-FOLDER]\n";
        return 2;
    }
    std::filesystem::create_directories(argv[1]);
    if (argc > 2)
        library.setImageFolder(argv[2]);

    mt::ConverterOptions options;
    options.outputDirectory = argv[1];
    options.colorMode = 0; // the colours of this library are linear
    mt::MaterialXConverter converter(options);

    // One material that fails is no reason to give up the others.
    std::size_t failed = 0;
    for (const host::AssetPtr& material : makeMaterials())
        failed += convert(converter, *material, argv[1]) ? 0 : 1;
    std::cout << failed << " failed; converter " << mt::libraryVersion() << '\n';
    return 0;
}
catch (const std::exception& error)
{
    // Exceptions of the asset library, and of files that cannot be written, come out here.
    std::cerr << "host: " << error.what() << '\n';
    return 1;
}
