#include "input/relative/CallbackWait.h"

#include "core/common/run/IDelayTimer.h"
#include "core/common/run/RunQueue.h"

#include <boost/asio/io_context.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <utility>

namespace orbelantine {

namespace {

using boost::asio::io_context;

/// What the copies of a callback share. They may outlive the wait.
class Ending {
  public:
    explicit Ending(boost::shared_ptr<io_context> queue)
        : mQueue(std::move(queue)) {}

    ~Ending() { end(); }

    Ending(const Ending&) = delete;
    Ending& operator=(const Ending&) = delete;

    void end() { mQueue->stop(); }

  private:
    boost::shared_ptr<io_context> mQueue;
};

} // namespace

bool waitForCallback(IClock& clock, IClock::Duration bound,
                     const boost::function<void(boost::function<void(error_code)>)>& operation) {
    const auto queue = boost::make_shared<io_context>();
    const auto timer = clock.makeTimer(*queue, laterBy(clock.now(), bound));
    bool tooLate = false;
    timer->asyncWait([&](const error_code&) { tooLate = true; });
    operation([ending = boost::make_shared<Ending>(queue)](error_code) { ending->end(); });
    runQueue(*queue);
    return !tooLate;
}

} // namespace orbelantine
