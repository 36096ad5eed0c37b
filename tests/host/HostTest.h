#pragma once

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <MaterialXCore/Document.h>
#include <MaterialXFormat/XmlIo.h>
#include <gtest/gtest.h>

#include <MaterialTranslation/Diagnostics.h>
#include <MaterialTranslation/MaterialXConverter.h>
#include <MaterialTranslation/Validation.h>

#include "host/HostileAssets.h"

namespace vyr::hosttests
{

namespace mx = MaterialX;
namespace fs = std::filesystem;

using namespace vyr::MaterialTranslation;
using support::readFile;
using support::TemporaryFolder;

using Codes = std::vector<DiagnosticCode>;
using Names = std::vector<std::string>;

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

/// The codes of lastDiagnostics().
inline Codes lastCodes()
{
    Codes codes;
    for (const Diagnostic& diagnostic : lastDiagnostics())
        codes.push_back(diagnostic.code);
    return codes;
}

/// The document as text.
inline std::string xmlOf(const mx::DocumentPtr& document)
{
    return mx::writeToXmlString(document);
}

/// An input of a top-level node; null when there is none.
inline mx::InputPtr inputOf(const mx::DocumentPtr& document, const std::string& node,
                            const std::string& input)
{
    const mx::NodePtr found = document->getNode(node);
    return found ? found->getInput(input) : nullptr;
}

/// Whether the document is valid, whether or not its images are there, and reads back equal from its own text.
inline ::testing::AssertionResult isSound(const mx::DocumentPtr& document)
{
    const std::string text = xmlOf(document);
    for (const ValidationMessage& message : validateDocument(document))
        if (message.code != ValidationCode::FileMissing)
            return ::testing::AssertionFailure() << message.path << ": " << message.text << text;
    const mx::DocumentPtr again = mx::createDocument();
    mx::readFromXmlString(again, text);
    if (!(*document == *again) || xmlOf(again) != text)
        return ::testing::AssertionFailure() << "the document reads back differently:\n" << text;
    return ::testing::AssertionSuccess();
}

/// What one translation into an empty document yielded.
struct Translation
{
    bool succeeded = false;
    mx::DocumentPtr document = mx::createDocument();
    std::vector<Diagnostic> diagnostics = {};

    /// All diagnostics, a line each.
    std::string report() const
    {
        std::string lines;
        for (const Diagnostic& diagnostic : diagnostics)
            lines += std::string(diagnosticCodeName(diagnostic.code)) + " [" + diagnostic.asset +
                     "] " + diagnostic.property + ": " + diagnostic.text + "\n";
        return lines;
    }
};

/// Every test ends with all references given back and no call made that the interfaces rule out.
class HostTest : public ::testing::Test
{
  protected:
    void TearDown() override
    {
        EXPECT_EQ(watch().live, 0u) << "references were not given back";
        for (const std::string& breach : watch().breaches)
            ADD_FAILURE() << breach;
        watch().breaches.clear();
        watch().assets.clear();
        watch().live = 0;
        redirectTemporaryDirectory(_temporaryDirectory);
    }

    /// The defaults, but plain colours taken as linear, so that they are seen as they are, and an
    /// output directory of the test's own.
    ConverterOptions plainOptions() const
    {
        ConverterOptions options;
        options.outputDirectory = UTF8String(_folder.text());
        options.colorMode = 0;
        options.imageSize = 16;
        return options;
    }
    /// Those, but one.
    template <class T> ConverterOptions with(T ConverterOptions::* option, T value) const
    {
        ConverterOptions options = plainOptions();
        options.*option = value;
        return options;
    }

    /// Points the system's temporary directory elsewhere until the end of the test.
    static void redirectTemporaryDirectory(const fs::path& folder)
    {
#if defined(_WIN32)
        _putenv_s("TMP", folder.string().c_str());
#else
        setenv("TMPDIR", folder.c_str(), 1);
#endif
    }

    /// Translates with a converter of the call's own.
    static Translation translate(const AssetPtr& asset, ConverterOptions options,
                                 const std::string& name = "M")
    {
        MaterialXConverter converter(options);
        Translation translation;
        translation.succeeded =
            converter.TranslateToMaterialX(*asset, UTF8String(name), translation.document);
        translation.diagnostics = lastDiagnostics();
        return translation;
    }
    Translation translate(const AssetPtr& asset) const { return translate(asset, plainOptions()); }

    TemporaryFolder _folder;

  private:
    const fs::path _temporaryDirectory = fs::temp_directory_path();
};

} // namespace vyr::hosttests
