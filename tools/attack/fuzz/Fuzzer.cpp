// What libFuzzer calls. VYR_TARGET is one of the functions of Targets.h.

#include <cstdint>
#include <cstdlib>
#include <iostream>

#include "Targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string wrong = vyr::attack::VYR_TARGET(std::string(data, data + size));
    if (!wrong.empty())
    {
        std::cerr << "wrong: " << wrong << '\n';
        std::abort();
    }
    return 0;
}
