#pragma once

#include <array>
#include <tuple>
#include <utility>

#include "bakes/patterns/Checker.h"
#include "bakes/patterns/Gradient.h"
#include "bakes/patterns/Marble.h"
#include "bakes/patterns/Noise.h"
#include "bakes/patterns/Speckle.h"
#include "bakes/patterns/Tile.h"
#include "bakes/patterns/Wave.h"
#include "bakes/patterns/Wood.h"

namespace vyr::MaterialTranslation::bakes
{

/// All kinds of patterns. Everything else about them follows from this list: the registry of schemas, the
/// textures that materials may have, the kernels, and the commands of the tool.
using PatternKinds = std::tuple<Checker, Gradient, Marble, Noise, Speckle, Tile, Wave, Wood>;

inline constexpr std::size_t patternKindCount = std::tuple_size_v<PatternKinds>;

/// Calls `task.operator()<Kind>()` for the kind at a place of PatternKinds.
template <class Task> void withPatternKind(std::size_t place, const Task& task)
{
    const auto callOne = [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        ((I == place ? task.template operator()<std::tuple_element_t<I, PatternKinds>>() : void()),
         ...);
    };
    callOne(std::make_index_sequence<patternKindCount>());
}

/// The places of the rows of a kind's two colours; none where it has a ramp.
template <class Kind> constexpr std::array<std::size_t, 2> colorRows(std::size_t none)
{
    if constexpr (requires { Kind::colors; })
        return Kind::colors;
    else
        return {none, none};
}

} // namespace vyr::MaterialTranslation::bakes
