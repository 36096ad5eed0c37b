#include "base/SharedLibrary.h"

#include <system_error>

#include "base/Text.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace vyr::base
{

namespace fs = std::filesystem;

namespace
{

fs::path fileOfCode(const void* function)
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

/// Why the last call failed.
std::string lastFailure(const fs::path& library)
{
#if defined(_WIN32)
    static_cast<void>(library);
    return std::system_category().message(static_cast<int>(GetLastError()));
#else
    const char* const text = dlerror();
    std::string failure = text ? text : "unknown reason";
    // The reader knows which library was wanted.
    if (const std::string own = library.native() + ": "; failure.starts_with(own))
        failure.erase(0, own.size());
    return validUtf8(failure);
#endif
}

} // namespace

fs::path folderOfCode(const void* function)
{
    std::error_code error;
    const fs::path real = fs::canonical(fileOfCode(function), error);
    return error ? fs::path() : real.parent_path();
}

OpenedFunction openFunction(const fs::path& library, const char* name)
{
#if defined(_WIN32)
    // What the library needs may lie beside it.
    const HMODULE handle = LoadLibraryExW(library.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    void* const address = handle ? reinterpret_cast<void*>(GetProcAddress(handle, name)) : nullptr;
#else
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const address = handle ? dlsym(handle, name) : nullptr;
#endif
    return {address, address ? "" : lastFailure(library)};
}

} // namespace vyr::base
