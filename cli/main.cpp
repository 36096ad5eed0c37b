#include <exception>
#include <new>
#include <string>
#include <type_traits>
#include <variant>

#include "CommandLine.h"
#include "Console.h"
#include "Documents.h"
#include "Report.h"
#include "batch/Refusal.h"

namespace
{

using namespace vyr::cli;
namespace batch = vyr::batch;

ExitStatus answer(ExitStatus status)
{
    return status;
}

template <class Command> ExitStatus answer(const Command& command)
{
    if constexpr (!std::is_base_of_v<DocumentsCommand, Command>)
        return run(command);
    else
    {
        if (command.progress == ProgressForm::Json)
            complainInJson();
        try
        {
            return run(command);
        }
        catch (const batch::Refusal&)
        {
            // Its old report is not to be taken for one of this run.
            retireReport(command.report);
            throw;
        }
    }
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
        status = std::visit([](const auto& command) { return answer(command); }, request);
    }
    catch (const batch::Refusal& refusal)
    {
        complainOf(refusal);
        status = ExitStatus::WrongUse;
    }
    catch (const std::exception& error)
    {
        complainOf(error);
    }
    return static_cast<int>(status);
}
