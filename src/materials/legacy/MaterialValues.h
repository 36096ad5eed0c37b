#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "assets/Asset.h"
#include "materials/legacy/NamedSchema.h"

namespace vyr::MaterialTranslation::materials::legacy
{

/// What one material says in its schema's rows, and the shader values that come of it.
class MaterialValues : public LegacyValues
{
  public:
    MaterialValues(const assets::Asset& asset, const NamedSchema& schema, std::int32_t colorMode,
                   const Log& log);

    float number(const char* row) const override { return at(placeOf(row))[0]; }
    std::array<float, 3> color(const char* row) const override { return at(placeOf(row)); }
    bool isGiven(const char* row) const override { return isGiven(placeOf(row)); }

    std::size_t placeOf(std::string_view row) const;
    bool isGiven(std::size_t place) const { return _values[place].has_value(); }
    std::array<float, 3> at(std::size_t place) const
    {
        return _values[place].value_or(_schema.rows()[place].property.fallback);
    }

    /// What the asset says in the row of a duty.
    std::optional<float> givenBy(Duty duty) const;

    /// The preset that a row's choice names; null for a row without presets.
    const Preset* presetAt(std::size_t place) const;

    /// What is given wins over what a choice brings, and that over what holds for the schema.
    Params params() const;

    /// The same where a row has another value.
    Params paramsWith(std::size_t place, float value) const;

  private:
    void chooseColor(std::size_t choice, const Log& log);

    const NamedSchema& _schema;
    /// For each row what the asset says.
    std::vector<std::optional<std::array<float, 3>>> _values;
};

} // namespace vyr::MaterialTranslation::materials::legacy
