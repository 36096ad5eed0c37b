// unload PLUGIN: loads a plugin, and with it the library, lets it register assets with an instance that is never
// released, and unloads the plugin; three times. Whether the system then unmaps the library is its own affair.
// It must end with status 0 and say "end".

#include <iostream>

#include <dlfcn.h>

#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "host/MemoryLibrary.h"

using Register = bool (*)(const kelvor::platform::assets::IAssetInstance&);

kelvor::platform::assets::IAssetLibraryManager* kelvor::platform::assets::GetIAssetLibraryManager()
{
    return nullptr;
}

int main(int argc, char** argv)
{
    for (int times = 0; times < 3; ++times)
    {
        void* const plugin = argc > 1 ? ::dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
        if (!plugin)
        {
            std::cout << "not loaded: " << ::dlerror() << '\n';
            return 1;
        }
        const auto registers = reinterpret_cast<Register>(::dlsym(plugin, "registerAsset"));
        for (const char* name : {"Oak", "Ash"})
            if (!registers(*host::makeMaterial(name, name,
                                               {{"generic_diffuse", host::makeBitmap("a.png")}})))
                return 1;
        if (::dlclose(plugin) != 0)
            return 1;
    }
    std::cout << "end" << std::endl;
    return 0;
}
