#pragma once

#include <string>
#include <utility>
#include <vector>

#include <MaterialTranslation/Diagnostics.h>

namespace vyr::MaterialTranslation
{

/// Where the steps of a translation report what the caller should know about one material.
///
/// It appends to a list that outlives it. Each record carries the material's identifier and, before
/// the property's name, the path of the textures that the translation has descended into.
class Log
{
  public:
    Log(std::vector<Diagnostic>& records, std::string asset)
        : _records(&records), _asset(std::move(asset))
    {
    }

    /// A log for the properties of a texture that is connected to `property`.
    Log below(const std::string& property) const;

    /// The same log with another list, whose records may be appended later.
    Log into(std::vector<Diagnostic>& records) const;
    void append(std::vector<Diagnostic> records) const;

    void error(DiagnosticCode code, const std::string& property, std::string text) const;
    void warning(DiagnosticCode code, const std::string& property, std::string text) const;

  private:
    void add(Severity severity, DiagnosticCode code, const std::string& property,
             std::string text) const;

    std::vector<Diagnostic>* _records;
    std::string _asset;
    std::string _path;
};

/// Collects the diagnostics of one call of a public operation on this thread: clears what the last
/// call left, unless it runs inside another operation of the library.
class LogSession
{
  public:
    LogSession();
    ~LogSession();
    LogSession(const LogSession&) = delete;
    LogSession& operator=(const LogSession&) = delete;

    /// Whether no other session is around it.
    static bool isOutermost();

    /// A log into this thread's list.
    static Log log(std::string asset = {});
};

} // namespace vyr::MaterialTranslation
