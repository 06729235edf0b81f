#include "core/common/run/StateMachine.h"

#include "core/common/run/RunQueue.h"

#include <boost/asio/executor_work_guard.hpp>

namespace orbelantine {

void runStateMachine(boost::asio::io_context& ioService) noexcept {
    ORB_TRACED();
    const auto work = boost::asio::make_work_guard(ioService);
    runQueue(ioService);
}

} // namespace orbelantine
