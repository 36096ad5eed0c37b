#include "Delivery.h"

#include <exception>

#include <MaterialTranslation/DocumentIO.h>

#include "Paths.h"

namespace vyr::cli
{

Delivery::Delivery(const ConvertCommand& command, const std::vector<Task>& tasks)
    : _command(command), _tasks(tasks),
      _progress(!command.quiet && !command.options.verbose, tasks.size())
{
}

void Delivery::take(std::size_t step, const Outcome& outcome)
{
    const Task& task = _tasks[step];
    print(messageLines(task.material->file, subjectOf(*task.material), outcome), outcome);
    _progress.show(step + 1);
    ++(outcome.converted ? _converted : _failed);
    if (!outcome.warnings.empty())
        ++_warned;
    if (!_command.report.empty())
        _report.add(task, outcome);
}

ExitStatus Delivery::finish(std::size_t done)
{
    _progress.clear();
    if (!_command.quiet)
        complain("vyr-mtlx: " + std::to_string(_converted) + " converted, " +
                 std::to_string(_failed) + " failed, " + std::to_string(_warned) +
                 " with warnings");
    if (done < _tasks.size())
    {
        complain("vyr-mtlx: interrupted, " + std::to_string(_tasks.size() - done) + " of " +
                 std::to_string(_tasks.size()) + " materials were not tried");
        return ExitStatus::Interrupted;
    }
    const bool reported = _command.report.empty() || writeReport();
    const bool good = _failed == 0 && (_warned == 0 || !_command.strict);
    return good && reported && _results.delivered() ? ExitStatus::Done : ExitStatus::SomeFailed;
}

void Delivery::print(const std::string& messages, const Outcome& outcome)
{
    if (!messages.empty() || Results::onTerminal())
        _progress.clear();
    complainAsIs(messages);
    if (outcome.converted)
        _results.write(outcome.document + '\n');
}

bool Delivery::writeReport() const
{
    try
    {
        MaterialTranslation::writeFileAtomically(pathFromUtf8(_command.report), _report.text());
        return true;
    }
    catch (const std::exception& error)
    {
        complain("vyr-mtlx: " + writeFailure(_command.report, error));
        return false;
    }
}

} // namespace vyr::cli
