#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <kelvor/platform/assets/IAssetLibraryManager.h>

#include "Values.h"

namespace vyr::assetlib
{

/// The asset library of this process as converters see it.
class LibraryManager final : public platform::IAssetLibraryManager, private platform::IPathResolver
{
  public:
    static LibraryManager& instance();

    const platform::IPathResolver* GetPathResolver() const override { return this; }
    void setFolders(const std::vector<std::string>& folders);

  private:
    using Folders = std::vector<std::filesystem::path>;

    LibraryManager() = default;

    bool Resolve(const UTF8String& uri, UTF8String& path) const override;
    bool Resolve(const WideString& uri, WideString& path) const override;
    std::shared_ptr<const Folders> folders() const;

    mutable std::mutex _mutex;
    std::shared_ptr<const Folders> _folders = std::make_shared<Folders>();
};

} // namespace vyr::assetlib
