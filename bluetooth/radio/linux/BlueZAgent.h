#pragma once

#include "bluetooth/radio/linux/DeviceTable.h"
#include "core/common/run/Clock.h"

#include <boost/smart_ptr/shared_ptr.hpp>
#include <sdbus-c++/sdbus-c++.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

namespace orbelantine::dbus {
class Bus;
} // namespace orbelantine::dbus

namespace orbelantine::bluez {

class BlueZObjects;

/// Whom BlueZ asks whether a device may pair or use a service. Only approve() ever agrees. It
/// belongs to the thread of the bus, and goes before the objects.
class BlueZAgent {
  public:
    static constexpr const char* kPath = "/orbelantine/agent";
    /// It shows a number and takes a yes or a no.
    static constexpr const char* kCapability = "DisplayYesNo";
    /// A request that is open for longer is refused.
    static constexpr std::chrono::seconds kLongestRequest{25};

    using OnRequest = std::function<void(const Device&)>;

    /// Throws sdbus::Error. `ioService` is run by the thread of the bus, and outlives this.
    BlueZAgent(dbus::Bus& bus, const BlueZObjects& objects, IClock& clock,
               boost::asio::io_context& ioService, OnRequest onRequest);
    ~BlueZAgent();
    BlueZAgent(const BlueZAgent&) = delete;
    BlueZAgent& operator=(const BlueZAgent&) = delete;

    /// Answers what this address has last asked; false if nothing is open. From here on its
    /// services are agreed to.
    [[nodiscard]] bool approve(const CMacAddress& address);
    /// Its services are asked for again.
    void forget(const CMacAddress& address);
    /// Ends all requests that are open, with an error of BlueZ's.
    void refuseAll(const char* error);

  private:
    using Answer = sdbus::Result<>;

    struct Request {
        Answer answer;
        boost::shared_ptr<IDelayTimer> timer;
    };

    void implementRequests();
    void implementRest();
    void authorizeService(Answer answer, const std::string& path);
    void ask(Answer answer, const std::string& path);
    void refuseLater(std::uint64_t address, Request& request);
    void refuse(std::uint64_t address, const char* error);
    [[nodiscard]] const Device& callingDevice(const std::string& path) const;
    void checkCaller() const;

    const BlueZObjects& mObjects;
    IClock& mClock;
    boost::asio::io_context& mIoService;
    const OnRequest mOnRequest;
    std::unique_ptr<sdbus::IObject> mObject;
    // Those that are open, by the address.
    std::map<std::uint64_t, Request> mRequests;
    std::set<std::uint64_t> mApproved;
};

} // namespace orbelantine::bluez
