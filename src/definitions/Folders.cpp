#include "definitions/Folders.h"

#include <stdexcept>

#include <MaterialXCore/Util.h>

#include "base/Paths.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace vyr::MaterialTranslation::definitions
{

namespace fs = std::filesystem;

namespace
{

/// The file of the library or program that a function is in; empty when the system cannot tell.
fs::path moduleFile(const void* function)
{
#if defined(_WIN32)
    HMODULE module = nullptr;
    constexpr DWORD flags =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (!GetModuleHandleExW(flags, static_cast<LPCWSTR>(function), &module))
        return {};
    std::wstring name(32768, L'\0');
    name.resize(GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size())));
    return name;
#else
    Dl_info info{};
    if (dladdr(function, &info) == 0 || !info.dli_fname)
        return {};
    // A program that was found on the search path is known by its bare name.
    const fs::path named(info.dli_fname);
    std::error_code error;
    if (named.has_parent_path())
        return fs::absolute(named, error);
    return fs::read_symlink("/proc/self/exe", error);
#endif
}

template <class Function> fs::path folderOf(Function* function)
{
    const fs::path file = moduleFile(reinterpret_cast<const void*>(function));
    std::error_code error;
    const fs::path real = fs::canonical(file, error);
    return error ? fs::path() : real.parent_path();
}

bool isFolder(const fs::path& path)
{
    std::error_code error;
    return fs::is_directory(path, error);
}

fs::path expectedStandard()
{
    const fs::path materialX = folderOf(&MaterialX::getVersionString);
    return materialX.empty() ? fs::path()
                             : (materialX / VYR_STANDARD_FROM_MATERIALX).lexically_normal();
}

/// Installed trees have their libraries at different depths below the prefix.
fs::path expectedKvor()
{
    fs::path folder = folderOf(&completed);
    for (fs::path below; folder != below; below = folder, folder = folder.parent_path())
    {
        const fs::path candidate = folder / VYR_KVOR_FROM_PREFIX;
        if (isFolder(candidate))
            return candidate;
    }
    return {};
}

fs::path choose(const fs::path& chosen, fs::path (*expected)(), const char* what)
{
    if (!chosen.empty())
        return fs::absolute(chosen);
    fs::path folder = expected();
    if (folder.empty() || !isFolder(folder))
        throw std::runtime_error(std::string(what) + " are not where they are expected" +
                                 (folder.empty() ? "" : " (" + base::utf8FromPath(folder) + ")") +
                                 "; setDefinitionFolders says where they are");
    return folder;
}

} // namespace

DefinitionFolders completed(const DefinitionFolders& chosen)
{
    return {choose(chosen.standard, expectedStandard, "MaterialX's standard definitions"),
            choose(chosen.kvor, expectedKvor, "the definitions of the kvor nodes")};
}

} // namespace vyr::MaterialTranslation::definitions
