#include "core/common/run/SafeIoService.h"

#include "core/common/errors/Exception.h"
#include "core/common/log/Log.h"
#include "core/common/run/RunQueue.h"

#include <boost/exception/diagnostic_information.hpp>

#include <exception>

namespace orbelantine {

void safeIoServiceRunWithPtr(boost::asio::io_context* ioService) {
    std::string diagnostics;
    try {
        runQueue(*ioService);
        return;
    } catch (const Exception& e) {
        diagnostics = boost::diagnostic_information(e);
        ORB_LOG(kLogError, "%s() %s", diagnostics.c_str());
    } catch (const std::exception& e) {
        diagnostics = boost::diagnostic_information(e);
        ORB_LOG(kLogError, "%s() (what: %s) %s", e.what(), diagnostics.c_str());
    } catch (const boost::exception& e) {
        diagnostics = boost::diagnostic_information(e);
        ORB_LOG(kLogError, "%s() %s", diagnostics.c_str());
    } catch (...) {
        diagnostics = boost::current_exception_diagnostic_information();
        ORB_LOG(kLogError, "%s() unexpected exception!");
    }
    ioServiceExceptionSignal()(diagnostics);
}

boost::signals2::signal<void(std::string)>& ioServiceExceptionSignal() {
    // I/O threads may end after the process's static objects have gone.
    static auto* const signal = new boost::signals2::signal<void(std::string)>;
    return *signal;
}

} // namespace orbelantine
