#pragma once

#include <string>

#include "graph/NodeLines.h"
#include "host/HostTest.h"

namespace vyr::materialtests
{

using namespace hosttests;
using graphtests::Lines;
using graphtests::linesOf;

inline AssetBuilder lyrexBuilder(const std::string& schema)
{
    AssetBuilder builder(schema);
    builder.text("VersionGUID", schema);
    return builder;
}

/// A bump map over an image, of the type "bumpmap_<type>" unless that is empty.
inline AssetBuilder bumpBuilder(const std::string& type)
{
    AssetBuilder builder = lyrexBuilder("BumpMapSchema");
    builder.uri("bumpmap_Bitmap", "bump.png");
    if (!type.empty())
        builder.choice("bumpmap_Type", "bumpmap_" + type);
    return builder;
}

} // namespace vyr::materialtests
