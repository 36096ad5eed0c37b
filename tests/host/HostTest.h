#pragma once

#include <string>
#include <tuple>
#include <vector>

#include <MaterialXCore/Document.h>

#include <gtest/gtest.h>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/MaterialXConverter.h>

#include "support/AssetBuilder.h"
#include "support/Documents.h"
#include "support/TemporaryFolder.h"

namespace vyr::hosttests
{

namespace mx = MaterialX;

using namespace vyr::MaterialTranslation;
using namespace vyr::support;
using kelvor::platform::assets::IAssetInstance;

using Codes = std::vector<DiagnosticCode>;

/// A text that public operations fill, and that knows how often they did.
struct StringSink final : MaterialXConverter::IString
{
    void Assign(const UTF8String& assigned) override
    {
        text = assigned.str();
        ++assignments;
    }

    std::string text;
    int assignments = 0;
};

/// The words of a text with spaces between them.
std::vector<std::string> words(const std::string& text);

/// The codes of lastDiagnostics().
Codes lastCodes();

/// What one translation into an empty document yielded.
struct Translation
{
    bool succeeded = false;
    mx::DocumentPtr document;
    std::vector<Diagnostic> diagnostics;

    /// Number of diagnostics with that code.
    std::size_t count(DiagnosticCode code) const;
    /// The first diagnostic with that code; the test fails when there is none.
    Diagnostic first(DiagnosticCode code) const;
    /// All diagnostics, a line each.
    std::string report() const;
};

/// Every test starts with a fresh host, and ends with all references given back and no call made
/// that the interfaces rule out.
class HostTest : public ::testing::Test
{
  protected:
    HostTest() { resetHost(); }
    void TearDown() override;

    /// The defaults, but plain colours taken as linear, so that they are seen as they are, and an
    /// output directory of the test's own.
    ConverterOptions plainOptions() const;
    /// Those, but one.
    template <class T> ConverterOptions with(T ConverterOptions::* option, T value) const
    {
        ConverterOptions options = plainOptions();
        options.*option = value;
        return options;
    }

    /// Points the system's temporary directory elsewhere until the end of the test.
    static void redirectTemporaryDirectory(const std::filesystem::path& folder);

    /// Translates under the name "M" with a converter of the call's own.
    Translation translate(const AssetPtr& asset) const;
    static Translation translate(const AssetPtr& asset, ConverterOptions options,
                                 const std::string& name = "M");

    TemporaryFolder _folder;

  private:
    const std::filesystem::path _temporaryDirectory = std::filesystem::temp_directory_path();
};

} // namespace vyr::hosttests
