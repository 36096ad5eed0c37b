#pragma once

#include <exception>

#include "assets/Log.h"

namespace vyr::MaterialTranslation::converter
{

/// Notes what leaves an operation as an exception, and lets it pass. A session must be open.
template <class Operation> auto reporting(Operation operation)
{
    try
    {
        return operation();
    }
    catch (const std::exception& error)
    {
        if (LogSession::isOutermost())
            LogSession::log().error(DiagnosticCode::Exception, "", error.what());
        throw;
    }
    catch (...)
    {
        if (LogSession::isOutermost())
            LogSession::log().error(DiagnosticCode::Exception, "", "an exception of unknown type");
        throw;
    }
}

} // namespace vyr::MaterialTranslation::converter
