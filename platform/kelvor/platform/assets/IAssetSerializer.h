#pragma once

#include <kelvor/platform/Interface.h>

namespace kelvor::platform::assets
{

/// Writes assets. Only its path serializer is named here, since it is part of the adaptor's
/// signature.
class KELVOR_PLATFORM_INTERFACE IAssetSerializer
{
  public:
    /// Decides how paths are written in serialised assets.
    class KELVOR_PLATFORM_INTERFACE IPathSerializer
    {
      protected:
        IPathSerializer() = default;
        IPathSerializer(const IPathSerializer&) = default;
        IPathSerializer& operator=(const IPathSerializer&) = default;
        virtual ~IPathSerializer() = default;
    };

  protected:
    IAssetSerializer() = default;
    IAssetSerializer(const IAssetSerializer&) = default;
    IAssetSerializer& operator=(const IAssetSerializer&) = default;
    ~IAssetSerializer() = default;
};

} // namespace kelvor::platform::assets
