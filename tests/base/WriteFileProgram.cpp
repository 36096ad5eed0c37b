// write FILE TEXT SIZE [TIMES]   the text over and over, to that size, as the whole file; the last time is told
// copy FROM TO
// What went wrong is printed, and the exit status is 1.

#include <atomic>
#include <cstdio>
#include <iostream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

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
        // What a process prints to a standard descriptor that was closed must not get into the file.
        bool hasClosed = false;
        for (const int descriptor : {0, 1, 2})
            hasClosed = hasClosed || ::fcntl(descriptor, F_GETFD) < 0;
        std::atomic<bool> isPrinting = hasClosed;
        std::thread printing(
            [&]
            {
                while (isPrinting)
                    for (const int descriptor : {0, 1, 2})
                        if (::lseek(descriptor, 0, SEEK_CUR) >= 0) [[maybe_unused]]
                            const ssize_t ignored = ::write(descriptor, "X", 1);
            });
        for (int times = argc > 5 ? std::stoi(argv[5]) : 1; times > 0 && !error; --times)
            error = vyr::base::writeFile(pathFromUtf8(argv[2]), bytes);
        isPrinting = false;
        printing.join();
    }
    if (error)
        std::cout << error.value() << '\n';
    return error ? 1 : 0;
}
