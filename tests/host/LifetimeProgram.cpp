// What the library leaves behind when a host ends: a process of its own for each way, over the in-memory asset library
// of the example host. It must end by itself with status 0, and say "end" at the end of main.
//
//     lifetime WAY
//
// static      a static converter, filled in main
// kept        the shared instance, kept by a static pointer after it was released
// instance    the shared instance, never released
// no-manager, no-resolver   a host without them, which has textures all the same

#include <iostream>
#include <memory>
#include <string>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "host/MemoryLibrary.h"

namespace kpa = kelvor::platform::assets;
using vyr::MaterialTranslation::ConverterOptions;
using vyr::MaterialTranslation::MaterialXConverter;

namespace
{

std::shared_ptr<MaterialXConverter> kept;

struct NoResolver final : kpa::IAssetLibraryManager
{
    const kpa::IPathResolver* GetPathResolver() const override { return nullptr; }
} noResolver;

kpa::IAssetLibraryManager* manager = nullptr;

struct Sink final : MaterialXConverter::IString
{
    void Assign(const MaterialXConverter::UTF8String&) override {}
} sink;

/// @return whether all went well.
bool use(const std::shared_ptr<MaterialXConverter>& converter)
{
    bool isFine = true;
    for (const char* name : {"Oak", "Ash"})
        isFine =
            converter->RegisterAssetForConversion(
                *host::makeMaterial(name, name, {{"generic_diffuse", host::makeBitmap("a.png")}}),
                sink) &&
            isFine;
    const auto document = MaterialX::createDocument();
    isFine = converter->TranslateToMaterialX(
                 *host::makeMaterial("x", "x", {{"generic_diffuse", host::makeBitmap("a.png")}}),
                 "M", document) &&
             isFine;
    const auto graph = document->getNodeGraph("M_nodegraph");
    return isFine && graph &&
           graph->getNode("generic_diffuse")->getInputValue("file")->getValueString() == "a.png" &&
           vyr::MaterialTranslation::registeredAssetCount() == 2;
}

} // namespace

kpa::IAssetLibraryManager* kpa::GetIAssetLibraryManager()
{
    return manager;
}

int main(int argc, char** argv)
{
    const std::string way = argc > 1 ? argv[1] : "";
    static host::Library library;
    if (way == "no-resolver")
        manager = &noResolver;
    else if (way != "no-manager")
        manager = &library;
    ConverterOptions options;
    kept = way == "static" ? std::make_shared<MaterialXConverter>(options)
                           : MaterialXConverter::getInstance(options);
    const bool isFine = use(kept);
    if (way == "kept" || manager != &library)
        MaterialXConverter::releaseInstance();
    if (way == "instance" || manager != &library)
        kept.reset();
    std::cout << "end" << std::endl;
    return isFine ? 0 : 1;
}
