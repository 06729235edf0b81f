#pragma once

#include <boost/signals2/signal.hpp>

#include <string>

namespace boost::asio {
class io_context;
} // namespace boost::asio

namespace orbelantine {

/// Body of an I/O thread: runs the queue until it is stopped or has no work left; what hasn't begun
/// by the stop isn't run. What a handler throws is logged and sent through
/// ioServiceExceptionSignal, and ends the run.
void safeIoServiceRunWithPtr(boost::asio::io_context* ioService);

/// Fires on the thread whose run ended, with the diagnostic text of the exception. Never destroyed.
[[nodiscard]] boost::signals2::signal<void(std::string)>& ioServiceExceptionSignal();

} // namespace orbelantine
