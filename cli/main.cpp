#include <exception>
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
        complain(std::string("vyr-mtlx: ") + error.what());
    }
    return static_cast<int>(status);
}
