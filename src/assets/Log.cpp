#include "assets/Log.h"

#include <iterator>

namespace vyr::MaterialTranslation
{

namespace
{

struct ThreadRecords
{
    int depth = 0;
    std::vector<Diagnostic> records;
};

ThreadRecords& threadRecords()
{
    thread_local ThreadRecords records;
    return records;
}

} // namespace

Log Log::below(const std::string& property) const
{
    Log log = *this;
    log._path += property + "/";
    return log;
}

Log Log::into(std::vector<Diagnostic>& records) const
{
    Log log = *this;
    log._records = &records;
    return log;
}

void Log::append(std::vector<Diagnostic> records) const
{
    _records->insert(_records->end(), std::make_move_iterator(records.begin()),
                     std::make_move_iterator(records.end()));
}

void Log::error(DiagnosticCode code, const std::string& property, std::string text) const
{
    add(Severity::Error, code, property, std::move(text));
}

void Log::warning(DiagnosticCode code, const std::string& property, std::string text) const
{
    add(Severity::Warning, code, property, std::move(text));
}

void Log::add(Severity severity, DiagnosticCode code, const std::string& property,
              std::string text) const
{
    _records->push_back({severity, code, _asset, _path + property, std::move(text)});
}

LogSession::LogSession()
{
    if (threadRecords().depth++ == 0)
        threadRecords().records.clear();
}

LogSession::~LogSession()
{
    --threadRecords().depth;
}

bool LogSession::isOutermost()
{
    return threadRecords().depth == 1;
}

Log LogSession::log(std::string asset)
{
    return {threadRecords().records, std::move(asset)};
}

const std::vector<Diagnostic>& lastDiagnostics()
{
    return threadRecords().records;
}

} // namespace vyr::MaterialTranslation
