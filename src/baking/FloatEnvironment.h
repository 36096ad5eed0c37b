#pragma once

#include <cfenv>

namespace vyr::MaterialTranslation::baking
{
/// The default floating-point environment for the life of the object.
///
/// A host may have set its threads to flush denormals or to round otherwise; the bakes then would depend on
/// the thread that computes a row.
class FloatEnvironment
{
  public:
    FloatEnvironment()
    {
        std::fegetenv(&_saved);
        std::fesetenv(FE_DFL_ENV);
    }
    ~FloatEnvironment() { std::fesetenv(&_saved); }
    FloatEnvironment(const FloatEnvironment&) = delete;
    FloatEnvironment& operator=(const FloatEnvironment&) = delete;

  private:
    std::fenv_t _saved{};
};
} // namespace vyr::MaterialTranslation::baking
