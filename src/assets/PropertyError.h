#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include <MaterialTranslation/Diagnostics.h>

namespace vyr::MaterialTranslation::assets
{

/// A property that is missing, of another type than expected, or of a value that cannot be used.
///
/// what() is the fixed text that hosts know: "Invalid property specified" or the name of the
/// expected type, such as "ePropertyType_Scalar". The property's name and the reason come beside
/// it.
class PropertyError : public std::invalid_argument
{
  public:
    PropertyError(const char* message, std::string property,
                  DiagnosticCode code = DiagnosticCode::PropertyType)
        : std::invalid_argument(message), _property(std::move(property)), _code(code),
          _reason(message)
    {
    }
    PropertyError(const char* message, std::string property, DiagnosticCode code,
                  std::string reason)
        : std::invalid_argument(message), _property(std::move(property)), _code(code),
          _reason(std::move(reason))
    {
    }

    const std::string& property() const { return _property; }
    /// The same error of a texture that is connected to `property`.
    PropertyError below(const std::string& property) const
    {
        return {what(), property + "/" + _property, _code, _reason};
    }
    DiagnosticCode code() const { return _code; }
    /// What to tell a person: what(), or something more helpful.
    const std::string& reason() const { return _reason; }

  private:
    std::string _property;
    DiagnosticCode _code;
    std::string _reason;
};

} // namespace vyr::MaterialTranslation::assets
