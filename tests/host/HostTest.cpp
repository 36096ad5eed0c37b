#include "host/HostTest.h"

#include <cstdlib>
#include <iterator>
#include <sstream>

namespace vyr::hosttests
{

std::vector<std::string> words(const std::string& text)
{
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

Codes lastCodes()
{
    Codes codes;
    for (const Diagnostic& diagnostic : lastDiagnostics())
        codes.push_back(diagnostic.code);
    return codes;
}

std::size_t Translation::count(DiagnosticCode code) const
{
    std::size_t found = 0;
    for (const Diagnostic& diagnostic : diagnostics)
        found += diagnostic.code == code ? 1 : 0;
    return found;
}

Diagnostic Translation::first(DiagnosticCode code) const
{
    for (const Diagnostic& diagnostic : diagnostics)
        if (diagnostic.code == code)
            return diagnostic;
    ADD_FAILURE() << "no " << diagnosticCodeName(code) << " among:\n" << report();
    return Diagnostic();
}

std::string Translation::report() const
{
    std::string lines;
    for (const Diagnostic& diagnostic : diagnostics)
        lines += std::string(diagnosticCodeName(diagnostic.code)) + " [" + diagnostic.asset + "] " +
                 diagnostic.property + ": " + diagnostic.text + "\n";
    return lines;
}

void HostTest::TearDown()
{
    EXPECT_EQ(liveAssets(), 0u) << "references were not given back";
    for (const std::string& breach : contractBreaches())
        ADD_FAILURE() << breach;
    redirectTemporaryDirectory(_temporaryDirectory);
}

void HostTest::redirectTemporaryDirectory(const std::filesystem::path& folder)
{
#if defined(_WIN32)
    _putenv_s("TMP", folder.string().c_str());
#else
    setenv("TMPDIR", folder.c_str(), 1);
#endif
}

ConverterOptions HostTest::plainOptions() const
{
    ConverterOptions options;
    options.outputDirectory = UTF8String(_folder.text());
    options.colorMode = 0;
    return options;
}

Translation HostTest::translate(const AssetPtr& asset) const
{
    return translate(asset, plainOptions());
}

Translation HostTest::translate(const AssetPtr& asset, ConverterOptions options,
                                const std::string& name)
{
    MaterialXConverter converter(options);
    Translation translation;
    translation.document = mx::createDocument();
    translation.succeeded =
        converter.TranslateToMaterialX(*asset, UTF8String(name), translation.document);
    translation.diagnostics = lastDiagnostics();
    return translation;
}

} // namespace vyr::hosttests
