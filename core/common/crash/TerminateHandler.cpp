#include "core/common/crash/TerminateHandler.h"

#include "core/common/log/Log.h"

#include <boost/exception/diagnostic_information.hpp>
#include <boost/exception/exception.hpp>

#include <atomic>
#include <exception>
#include <string>

namespace orbelantine {

namespace {

/// Empty for what isn't an exception of Boost or of the standard library, or where there is none.
std::string currentDiagnostics() {
    if (std::current_exception() == nullptr)
        return {};
    try {
        throw;
    } catch (const boost::exception& e) {
        return boost::diagnostic_information(e);
    } catch (const std::exception& e) {
        return boost::diagnostic_information(e);
    } catch (...) {
        return {};
    }
}

} // namespace

void terminateHandler() {
    ORB_LOG_TEXT(kLogDebug, "Entering function %s", ORB_FUNCTION_NAME);
    static std::atomic<bool> told = false;
    if (told.exchange(true))
        return;
    ORB_LOG(kLogError, "%s() ***CRITICAL*** Unhandled exception. %s", currentDiagnostics().c_str());
}

} // namespace orbelantine
