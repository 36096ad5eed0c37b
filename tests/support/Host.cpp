#include "support/Host.h"

#include <mutex>
#include <optional>

#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "support/AssetPool.h"

namespace vyr::support
{

namespace
{

using kelvor::platform::assets::IAssetLibraryManager;
using kelvor::platform::assets::IPathResolver;
using kelvor::platform::core::string::UTF8String;
using kelvor::platform::core::string::WideString;

struct TestManager final : IAssetLibraryManager, IPathResolver
{
    const IPathResolver* GetPathResolver() const override
    {
        return passing(presence == LibraryPresence::Full ? this : nullptr);
    }
    bool Resolve(const UTF8String& uri, UTF8String& path) const override
    {
        passOperation();
        std::string found;
        if (!resolver || !resolver(uri.str(), found))
            return false;
        path = UTF8String(found);
        return true;
    }
    /// Only for texts of ASCII characters, which is all that the tests resolve in this form.
    bool Resolve(const WideString& uri, WideString& path) const override
    {
        std::string narrow;
        for (const wchar_t character : uri.str())
            narrow += static_cast<char>(character);
        UTF8String found;
        if (!Resolve(UTF8String(narrow), found))
            return false;
        path = WideString(std::wstring(found.str().begin(), found.str().end()));
        return true;
    }

    Resolver resolver;
    LibraryPresence presence = LibraryPresence::Full;
};

TestManager manager;
std::mutex breachMutex;
std::vector<std::string> breaches;
thread_local std::optional<std::size_t> operationsLeft;

} // namespace

std::vector<std::string> contractBreaches()
{
    const std::lock_guard lock(breachMutex);
    return breaches;
}

void recordBreach(const std::string& what)
{
    const std::lock_guard lock(breachMutex);
    breaches.push_back(what);
}

void failAfter(std::size_t operations)
{
    operationsLeft = operations;
}

bool cancelFailure()
{
    return std::exchange(operationsLeft, std::nullopt).has_value();
}

void passOperation(std::source_location where)
{
    if (!operationsLeft || (*operationsLeft)-- > 0)
        return;
    operationsLeft.reset();
    throw HostFault(where.function_name());
}

void setResolver(Resolver resolver)
{
    manager.resolver = std::move(resolver);
}

void setLibraryPresence(LibraryPresence presence)
{
    manager.presence = presence;
}

void resetHost()
{
    cancelFailure();
    setResolver(nullptr);
    setLibraryPresence(LibraryPresence::Full);
    resetAssetPool();
    const std::lock_guard lock(breachMutex);
    breaches.clear();
}

} // namespace vyr::support

kelvor::platform::assets::IAssetLibraryManager* kelvor::platform::assets::GetIAssetLibraryManager()
{
    using namespace vyr::support;
    return manager.presence == LibraryPresence::NoManager ? nullptr : &manager;
}
