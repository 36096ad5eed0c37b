#include <algorithm>
#include <cmath>

#include "materials/legacy/Common.h"

namespace vyr::MaterialTranslation::materials::legacy
{

namespace
{

constexpr const Schema* all[] = {
    &ceramic, &concrete,     &glazing,    &hardwood, &masonry,   &metal, &metallicPaint,
    &mirror,  &plasticVinyl, &solidGlass, &stone,    &wallPaint, &water,
};

} // namespace

std::span<const Schema* const> schemas()
{
    return all;
}

} // namespace vyr::MaterialTranslation::materials::legacy
