#include "bluetooth/radio/linux/Inquiry.h"

#include "bluetooth/dbus/linux/BlueZNames.h"
#include "bluetooth/radio/linux/BlueZErrors.h"
#include "core/common/errors/GenericError.h"
#include "core/common/log/Log.h"
#include "core/common/run/IDelayTimer.h"

#include <boost/system/error_code.hpp>

#include <chrono>
#include <utility>

namespace orbelantine::bluez {

namespace {

/// The unit that inquiries are measured in.
constexpr std::chrono::milliseconds kInquiryUnit(1'280);

bool wasSeen(const Device& device) {
    return device.seen;
}

} // namespace

Inquiry::Inquiry(dbus::Calls& calls, DeviceTable& table, IClock& clock,
                 boost::asio::io_context& ioService)
    : mCalls(calls)
    , mTable(table)
    , mClock(clock)
    , mIoService(ioService) {}

Inquiry::~Inquiry() {
    if (mTimer)
        mTimer->cancel();
}

void Inquiry::run(const std::string& adapter, std::uint16_t length, Done done) {
    mJobs.push_back({adapter, kInquiryUnit * length, std::move(done)});
    if (mJobs.size() == 1)
        start();
}

void Inquiry::checkAdapter() {
    if (!mJobs.empty() && !adapterIsOn())
        finish(genericError(generic::kNetworkDown));
}

void Inquiry::abandon() {
    if (!mJobs.empty())
        mCalls.tell({mJobs.front().adapter, dbus::kAdapter, "StopDiscovery"});
    if (mTimer)
        mTimer->cancel();
    mTimer.reset();
    ++mNumber;
    for (const Job& job : std::exchange(mJobs, {}))
        job.done(genericError(generic::kNetworkDown), {});
}

void Inquiry::start() {
    ++mNumber;
    if (!adapterIsOn())
        return finish(genericError(generic::kNetworkDown));
    const Properties filter = {{"Transport", sdbus::Variant(std::string("bredr"))}};
    callAdapter("SetDiscoveryFilter", &Inquiry::filterSet, filter);
}

template <class... Arguments>
void Inquiry::callAdapter(const char* method, void (Inquiry::*then)(const sdbus::Error*),
                          const Arguments&... arguments) {
    mCalls.call(
        {mJobs.front().adapter, dbus::kAdapter, method},
        [this, number = mNumber, then](const sdbus::Error* error, const sdbus::MethodReply&) {
            if (number == mNumber && !mJobs.empty())
                (this->*then)(error);
        },
        arguments...);
}

// Without its filter BlueZ listens for low energy too: slower, and no failure.
void Inquiry::filterSet(const sdbus::Error* error) {
    if (error != nullptr)
        ORB_LOG(kLogDebug, "%s() %s", error->what());
    mTable.forgetSightings();
    callAdapter("StartDiscovery", &Inquiry::started);
}

void Inquiry::started(const sdbus::Error* error) {
    // Somebody else's inquiry serves as well.
    if (error == nullptr || error->getName() == "org.bluez.Error.InProgress")
        return listen();
    const error_code ec = errorOf(error->getName());
    ORB_LOG(kLogError, "%s: StartDiscovery error. Error: %d (%s)", ec.value(), error->what());
    finish(ec);
}

void Inquiry::listen() {
    mTimer = mClock.makeTimer(mIoService, laterBy(mClock.now(), mJobs.front().length));
    mTimer->asyncWait([this](const boost::system::error_code& ec) {
        if (!ec)
            stop();
    });
}

void Inquiry::stop() {
    mTimer.reset();
    callAdapter("StopDiscovery", &Inquiry::stopped);
}

void Inquiry::stopped(const sdbus::Error* error) {
    if (error != nullptr)
        ORB_LOG(kLogDebug, "%s() %s", error->what());
    finish({});
}

void Inquiry::finish(error_code ec) {
    if (mTimer)
        mTimer->cancel();
    mTimer.reset();
    ++mNumber;
    const Job job = std::move(mJobs.front());
    mJobs.pop_front();
    job.done(ec, ec ? std::vector<Device>() : mTable.devices(job.adapter, wasSeen));
    if (!mJobs.empty())
        start();
}

bool Inquiry::adapterIsOn() const {
    const Adapter* const adapter = mTable.findAdapter(mJobs.front().adapter);
    return adapter != nullptr && adapter->powered;
}

} // namespace orbelantine::bluez
