#pragma once

#include <vector>

#include <MaterialXCore/Document.h>

#include <MaterialTranslation/Validation.h>

#include "definitions/DataLibrary.h"

namespace vyr::MaterialTranslation::definitions
{

enum class UnitScope
{
    /// Only the units that MaterialX's standard library lacks.
    Lacking,
    /// All units.
    All,
};

/// Converts values to "meter", "degree" and candela per square metre. The last has no name in MaterialX's
/// standard library: such values have no unit afterwards. Units that are not known stay and are reported, and so do
/// values that no number could hold afterwards.
void useStandardUnits(const MaterialX::DocumentPtr& document, UnitScope scope,
                      const Definitions& definitions, std::vector<ValidationMessage>& messages);

} // namespace vyr::MaterialTranslation::definitions
