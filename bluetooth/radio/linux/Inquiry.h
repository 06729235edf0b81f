#pragma once

#include "bluetooth/dbus/linux/Calls.h"
#include "bluetooth/radio/linux/DeviceTable.h"
#include "core/common/errors/ErrorCode.h"
#include "core/common/run/Clock.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace orbelantine::bluez {

/// Inquiries, one after the other:
///
///     Idle --run--> Starting --BlueZ inquires--> Listening --the time is over--> Stopping --> Idle
///
/// It belongs to the thread of the bus, and goes before the calls and the table.
class Inquiry {
  public:
    /// Called once: the devices that were heard, none after a failure.
    using Done = std::function<void(error_code, const std::vector<Device>&)>;

    Inquiry(dbus::Calls& calls, DeviceTable& table, IClock& clock,
            boost::asio::io_context& ioService);
    ~Inquiry();
    Inquiry(const Inquiry&) = delete;
    Inquiry& operator=(const Inquiry&) = delete;

    /// For `length` units of 1.28 s, once those before it are through.
    void run(const std::string& adapter, std::uint16_t length, Done done);
    /// Ends those whose adapter is gone or off.
    void checkAdapter();
    /// Ends all of them, BlueZ's own too.
    void abandon();

  private:
    struct Job {
        std::string adapter;
        IClock::Duration length;
        Done done;
    };

    void start();
    void begin();
    void listen();
    void stop();
    void finish(error_code ec);
    [[nodiscard]] bool adapterIsOn() const;
    /// A call to the adapter, whose answer counts if the same inquiry is still in progress.
    template <class... Arguments>
    void callAdapter(const char* method, void (Inquiry::*then)(const sdbus::Error*),
                     const Arguments&... arguments);
    void filterSet(const sdbus::Error* error);
    void started(const sdbus::Error* error);
    void stopped(const sdbus::Error* error);

    dbus::Calls& mCalls;
    DeviceTable& mTable;
    IClock& mClock;
    boost::asio::io_context& mIoService;
    // The first is in progress.
    std::deque<Job> mJobs;
    // Counts inquiries; what belongs to an earlier one comes too late.
    unsigned mNumber = 0;
    boost::shared_ptr<IDelayTimer> mTimer;
};

} // namespace orbelantine::bluez
