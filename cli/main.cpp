#include <exception>
#include <new>
#include <string>
#include <variant>

#include "CommandLine.h"
#include "Console.h"

namespace
{

using namespace vyr::cli;

ExitStatus run(ExitStatus status)
{
    return status;
}

/// Memory may have run out, also for the message.
void complainOf(const std::exception& error)
try
{
    complain(std::string("vyr-mtlx: ") + error.what());
}
catch (const std::bad_alloc&)
{
    complainAsIs("vyr-mtlx: not enough memory\n");
}

} // namespace

int main(int argc, char** argv)
{
    ExitStatus status = ExitStatus::SomeFailed;
    try
    {
        prepareProcess();
        catchStopRequests();
        const Request request = parseCommandLine(argc, argv);
        status = std::visit([](const auto& command) { return run(command); }, request);
    }
    catch (const std::exception& error)
    {
        complainOf(error);
    }
    return static_cast<int>(status);
}
