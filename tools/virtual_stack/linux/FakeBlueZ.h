#pragma once

#include "tools/virtual_stack/linux/Recorder.h"
#include "tools/virtual_stack/linux/Settings.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace orbelantine::stack {

/// org.bluez on a bus: adapters, devices, agents and profiles, on a thread of its own. It begins
/// without an adapter. The bus may die before it.
///
/// An inquiry finds at once each device that is in range and discoverable. Such a device stays an
/// object when the inquiry is over, without its RSSI, until dropFound().
///
/// Any thread may call, the observer too. What a function changes has gone out on the bus, or is
/// queued there, when it returns.
class FakeBlueZ {
  public:
    struct Options {
        /// Bus address; empty for the system bus.
        std::string bus = {};
        /// The error that profiles are refused with; empty to take them.
        std::string profileRefusal = {};
        /// Gets every event, on the stack's thread; may be null.
        Recorder::Observer observer = {};
    };

    /// Throws sdbus::Error where the bus can't be reached or has an org.bluez already.
    explicit FakeBlueZ(const Options& options);
    /// Gives up its name too.
    ~FakeBlueZ();

    /// As when bluetoothd crashes, and when it is started again: what is known stays known.
    void stop();
    void restart();

    void addAdapter(const AdapterSettings& settings = {});
    void removeAdapter(const std::string& name = "hci0");
    void power(bool on, const std::string& adapter = "hci0");

    /// Also changes one that is there, by its address. Without effect where its adapter isn't
    /// there.
    void addDevice(const DeviceSettings& settings);
    void removeDevice(const std::string& address);
    /// What is known of a device now; its name is empty where there is none.
    [[nodiscard]] DeviceSettings device(const std::string& address) const;
    /// Devices that were found and not paired are no longer objects.
    void dropFound();
    /// Each device that is an object tells of its signal so many times.
    void simulateSignals(unsigned times);

    /// Of what the computer's agent is asked for the phone; without effect while it is asked
    /// already.
    void phoneAsks(const std::string& address, Asking kind = Asking::Confirmation);
    /// Ends the pairing or the question that is open.
    void phoneCancels(const std::string& address);

    [[nodiscard]] Seen seen() const;
    /// Events and filters begin anew.
    void forgetSeen();
    /// Waits until it is so; false if that takes too long.
    [[nodiscard]] bool waitUntil(const std::function<bool(const Seen&)>& isSo,
                                 std::chrono::milliseconds longest = std::chrono::minutes(1)) const;

  private:
    class Stack;
    std::unique_ptr<Stack> mStack;
};

} // namespace orbelantine::stack
