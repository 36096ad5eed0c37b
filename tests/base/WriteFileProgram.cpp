// write FILE TEXT SIZE [TIMES]   the text over and over, to that size, as the whole file; the last time is told
// copy FROM TO
// What went wrong is printed, and the exit status is 1.

#include <iostream>
#include <string>

#include "base/Paths.h"
#include "base/WriteFile.h"

int main(int argc, char** argv)
{
    if (argc < 4)
        return 2;
    using vyr::base::pathFromUtf8;
    std::error_code error;
    if (argv[1] == std::string("copy"))
        error = vyr::base::copyFile(pathFromUtf8(argv[2]), pathFromUtf8(argv[3]));
    else
    {
        std::string bytes;
        for (const std::size_t size = std::stoul(argv[4]); bytes.size() < size;)
            bytes += argv[3];
        for (int times = argc > 5 ? std::stoi(argv[5]) : 1; times > 0 && !error; --times)
            error =
                vyr::base::writeFile(pathFromUtf8(argv[2]), bytes, vyr::base::SameBytes::AreWritten)
                    .error;
    }
    if (error)
        std::cout << error.value() << '\n';
    return error ? 1 : 0;
}
