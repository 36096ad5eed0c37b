#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <vyr/assetlib/Library.h>

namespace vyr::batch
{

/// What was asked for cannot be begun; nothing was written.
class Refusal : public std::runtime_error
{
  public:
    /// @param reasons in English, one line each; not empty.
    explicit Refusal(std::vector<std::string> reasons)
        : std::runtime_error(joined(reasons)), _reasons(std::move(reasons))
    {
    }
    explicit Refusal(const std::string& reason) : Refusal(std::vector{reason}) {}

    const std::vector<std::string>& reasons() const { return _reasons; }

  private:
    static std::string joined(const std::vector<std::string>& reasons)
    {
        std::string text;
        for (const std::string& reason : reasons)
            text += (text.empty() ? "" : "\n") + reason;
        return text;
    }

    std::vector<std::string> _reasons;
};

/// Selected materials do not exist.
class UnknownMaterial : public Refusal
{
  public:
    using Refusal::Refusal;
};

/// Files that were not taken.
class LoadRefusal : public Refusal
{
  public:
    explicit LoadRefusal(std::vector<assetlib::LoadError> errors)
        : Refusal(linesOf(errors)), _errors(std::move(errors))
    {
    }

    const std::vector<assetlib::LoadError>& errors() const { return _errors; }

  private:
    static std::vector<std::string> linesOf(const std::vector<assetlib::LoadError>& errors)
    {
        std::vector<std::string> lines;
        for (const assetlib::LoadError& error : errors)
            lines.push_back(error.format());
        return lines;
    }

    std::vector<assetlib::LoadError> _errors;
};

} // namespace vyr::batch
