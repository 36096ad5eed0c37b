#include "support/Host.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

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

class TestResolver final : public IPathResolver
{
  public:
    bool Resolve(const UTF8String& uri, UTF8String& path) const override
    {
        passOperation("IPathResolver::Resolve");
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
        std::transform(uri.str().begin(), uri.str().end(), std::back_inserter(narrow),
                       [](wchar_t character) { return static_cast<char>(character); });
        UTF8String found;
        if (!Resolve(UTF8String(narrow), found))
            return false;
        path = WideString(std::wstring(found.str().begin(), found.str().end()));
        return true;
    }

    Resolver resolver;
};

class TestManager final : public IAssetLibraryManager
{
  public:
    const IPathResolver* GetPathResolver() const override
    {
        passOperation("IAssetLibraryManager::GetPathResolver");
        return presence == LibraryPresence::Full ? &resolver : nullptr;
    }

    TestResolver resolver;
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

void passOperation(const char* name)
{
    if (!operationsLeft)
        return;
    if (*operationsLeft == 0)
    {
        operationsLeft.reset();
        throw HostFault(name);
    }
    --*operationsLeft;
}

void setResolver(Resolver resolver)
{
    manager.resolver.resolver = std::move(resolver);
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

namespace kelvor::platform::assets
{

IAssetLibraryManager* GetIAssetLibraryManager()
{
    using vyr::support::LibraryPresence;
    auto& manager = vyr::support::manager;
    return manager.presence == LibraryPresence::NoManager ? nullptr : &manager;
}

} // namespace kelvor::platform::assets
