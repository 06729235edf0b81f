#pragma once

#include "core/common/run/Clock.h"

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>
#include <functional>
#include <memory>

namespace orbelantine::dbus {

class Bus;

/// Serves a bus on an io_service. All of it belongs to the thread that runs that (runQueue), and it
/// goes before both.
class BusLoop : public std::enable_shared_from_this<BusLoop> {
  public:
    /// `onLost` is called once, from process() or the queue, and may let go of all of this. Begins
    /// with the first process(). Throws std::system_error where there are no descriptors left.
    BusLoop(Bus& bus, boost::asio::io_context& ioService, std::function<void()> onLost);

    /// Handles what has come in, and waits for more; at the end of every task that uses the bus.
    void process();

  private:
    using Descriptor = boost::asio::posix::stream_descriptor;

    void waitForMore();
    void waitFor(Descriptor::wait_type type, bool& waiting);
    void waitUntil(std::uint64_t dueAt);
    void processLater();

    Bus& mBus;
    boost::asio::io_context& mIoService;
    std::function<void()> mOnLost;
    // A copy of the bus's: asio closes what it waits for.
    Descriptor mDescriptor;
    bool mReading = false;
    bool mWriting = false;
    bool mQueued = false;
    std::uint64_t mDueAt;
    boost::shared_ptr<IDelayTimer> mTimer;
};

} // namespace orbelantine::dbus
