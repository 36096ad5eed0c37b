// A host in the small: it links to the installed library, defines the one function that the library
// leaves open, and converts an asset of its own.

#include <iostream>
#include <memory>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <MaterialTranslation/Validation.h>
#include <MaterialXFormat/XmlIo.h>
#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "Library.h"

namespace kelvor::platform::assets
{

IAssetLibraryManager* GetIAssetLibraryManager()
{
    return nullptr;
}

} // namespace kelvor::platform::assets

namespace
{

int complain(const char* what)
{
    std::cerr << "consumer: " << what << '\n';
    for (const auto& diagnostic : vyr::MaterialTranslation::lastDiagnostics())
        std::cerr << "  " << diagnostic.property << ": " << diagnostic.text << '\n';
    return 1;
}

} // namespace

int main()
{
    using namespace vyr::MaterialTranslation;
    using namespace consumer::assets;

    ConverterOptions options;
    options.colorMode = 0;
    MaterialXConverter converter(options);

    const std::unique_ptr<consumer::Asset, IAssetInstanceDeleter> asset(
        new consumer::Asset({{"generic_diffuse", ePropertyType_Color, {0.5, 0.25, 0.125}},
                             {"generic_glossiness", ePropertyType_Scalar, {0.5}},
                             {"generic_reflectivity_at_0deg", ePropertyType_Scalar, {0.25}}}));
    const auto document = MaterialX::createDocument();
    if (!converter.TranslateToMaterialX(*asset, converter.getMaterialName(*asset), document))
        return complain("the asset was not converted");

    const std::vector<MaterialX::NodePtr> shaders = document->getNodes("standard_surface");
    if (shaders.size() != 1)
        return complain("the document does not hold one shader");
    const MaterialX::ValuePtr color = shaders.front()->getInputValue("base_color");
    if (!color || !color->isA<MaterialX::Color3>() ||
        color->asA<MaterialX::Color3>() != MaterialX::Color3(0.5f, 0.25f, 0.125f))
        return complain("the shader does not have the asset's colour");

    // The definitions come from the installed tree, wherever it lies.
    for (const ValidationMessage& message : validateDocument(document))
        return complain(message.text.c_str());
    if (!definitionLibrary()->getNodeDef("kvor:ND_metal_surfaceshader"))
        return complain("the kvor definitions are not there");

    std::cout << libraryVersion() << '\n' << MaterialX::writeToXmlString(document);
    return 0;
}
