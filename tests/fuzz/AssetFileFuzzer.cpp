#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "FuzzCase.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::filesystem::path file =
        std::filesystem::temp_directory_path() / "vyr-fuzzed-assets.json";
    const std::string wrong =
        vyr::assetlib::tests::checkAssetFile(file, std::string(data, data + size));
    if (!wrong.empty())
    {
        std::fputs(wrong.c_str(), stderr);
        std::abort();
    }
    return 0;
}
