#pragma once

namespace boost::asio {
class io_context;
} // namespace boost::asio

namespace orbelantine {

/// Runs what is posted, and ends the waits of the system clock's timers in their time, until the
/// io_service is stopped or has no work left; what hasn't begun by the stop isn't run. What a
/// handler throws passes through, and the timers go uncalled.
void runQueue(boost::asio::io_context& ioService);

} // namespace orbelantine
