#pragma once

/// @file
/// What holds for every interface under `kelvor::platform::assets`.
///
/// A host implements these interfaces for its own asset library; the converter only calls them.
///
/// - **Ownership.** Two operations hand out a reference to an asset that the caller must give back
///   with IAssetInstance::Release: IAssetInstance::Clone, and IProperty::GetConnectedAsset.
///   Everything else that is returned by pointer (properties, values, choices, identity and
///   definition objects, property tables, the path resolver) belongs to the object it was asked of
///   and lives as long as the caller holds a reference to the asset behind it.
/// - **Texts** are written into objects of the caller, so that no text outlives or dangles. An
///   operation that fills a text replaces what was there.
/// - **Threads.** Reading an asset (every const operation), asking for connected assets, cloning and
///   releasing must be safe from several threads at once, also on the same asset: a host may
///   translate materials side by side, and materials share connected textures. In practice the
///   reference count is atomic and reading changes nothing. The asset library must not change an
///   asset while it is being translated.
/// - **Exceptions** that an implementation throws pass through the converter to the host; the clone
///   and all references held by the converter are given back on the way.
/// - Indices start at 0. The converter never asks for an index that is not below the count that the
///   object reported.

#include <cstddef>
#include <cstdint>

namespace kelvor::platform::assets
{

class IAssetDefinition;
class IAssetIdentity;
class IAssetInstance;
class IAssetLibraryManager;
class IChoice;
class IChoiceListValue;
class IChoiceTable;
class IConverterAdaptor;
class IPathResolver;
class IProperty;
class IPropertyConstTable;
class IValue;

} // namespace kelvor::platform::assets
