#include "host/HostTest.h"

#include <algorithm>

namespace vyr::hosttests
{

namespace
{

auto hasCode(DiagnosticCode code)
{
    return [code](const Diagnostic& diagnostic) { return diagnostic.code == code; };
}

} // namespace

std::vector<DiagnosticCode> lastCodes()
{
    std::vector<DiagnosticCode> codes;
    for (const Diagnostic& diagnostic : lastDiagnostics())
        codes.push_back(diagnostic.code);
    return codes;
}

std::size_t Translation::count(DiagnosticCode code) const
{
    return static_cast<std::size_t>(
        std::count_if(diagnostics.begin(), diagnostics.end(), hasCode(code)));
}

Diagnostic Translation::first(DiagnosticCode code) const
{
    const auto found = std::find_if(diagnostics.begin(), diagnostics.end(), hasCode(code));
    if (found != diagnostics.end())
        return *found;
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

HostTest::HostTest()
{
    resetHost();
}

void HostTest::TearDown()
{
    EXPECT_EQ(liveAssets(), 0u) << "references were not given back";
    for (const std::string& breach : contractBreaches())
        ADD_FAILURE() << breach;
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
