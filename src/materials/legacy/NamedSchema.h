#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "materials/legacy/Rows.h"

namespace vyr::MaterialTranslation::materials::legacy
{

/// A row with the names that assets use.
struct NamedRow
{
    const Row* row;
    PropertyRow property;
};

/// A schema's table with the names that assets use.
class NamedSchema
{
  public:
    explicit NamedSchema(const Schema& schema);

    const Schema& schema() const { return *_schema; }
    const std::vector<NamedRow>& rows() const { return _rows; }
    const std::vector<PropertyRow>& properties() const { return _properties; }

    /// The full name of what a table names.
    std::string nameOf(std::string_view name) const;

  private:
    const Schema* _schema;
    std::deque<std::string> _texts;
    std::vector<NamedRow> _rows;
    std::vector<PropertyRow> _properties;
};

/// All schemas of the family.
const std::deque<NamedSchema>& namedSchemas();

} // namespace vyr::MaterialTranslation::materials::legacy
