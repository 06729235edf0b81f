#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

#include <functional>
#include <thread>

namespace orbelantine {

/// Starts one of the library's workers. Throws std::system_error if there can be no thread.
[[nodiscard]] std::thread startWorkerThread(std::function<void()> body);

/// Whether the calling thread is one that startWorkerThread has made.
[[nodiscard]] bool onWorkerThread();

/// What startWorkerThread makes a thread with: std::thread. Tests put in what fails.
using ThreadMaker = std::thread (*)(std::function<void()> body);
void setThreadMaker(ThreadMaker maker);
[[nodiscard]] std::thread makeThread(std::function<void()> body);

/// Lets an object go on a thread of its own, since its end waits for the calling one. If there can
/// be no thread, that is logged and the object stays.
void endElsewhere(boost::shared_ptr<void> object);

} // namespace orbelantine
