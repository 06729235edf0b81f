#include "tools/soak/PeerStarts.h"

#include "bluetooth/peers/BluetoothPeerManager.h"
#include "bluetooth/radio/linux/BlueZBackend.h"
#include "tools/virtual_stack/linux/FakeBlueZ.h"
#include "tools/virtual_stack/linux/PrivateBus.h"

#include <chrono>
#include <stdexcept>
#include <string>

namespace orbelantine::soak {

namespace {

constexpr unsigned kDevices = 20;
constexpr std::chrono::seconds kPatience(20);

std::string addressOf(unsigned device) {
    return "00:00:00:00:00:" + std::to_string(10 + device);
}

void startAndStop(BluetoothPeerManager& manager, stack::FakeBlueZ& stack) {
    manager.start(true);
    manager.startDiscovery();
    if (!stack.waitUntil([](const stack::Seen& seen) { return !seen.discoverers.empty(); },
                         kPatience))
        throw std::runtime_error("no discovery has begun in time");
    manager.stop();
    stack.dropFound();
    stack.forgetSeen();
}

} // namespace

PeerStarts PeerStarts::run(std::uint64_t starts) {
    const stack::PrivateBus bus;
    if (!bus.runs())
        throw std::runtime_error("dbus-daemon doesn't run: install the package dbus");
    stack::FakeBlueZ stack({.bus = bus.address()});
    stack.addAdapter();
    for (unsigned device = 0; device < kDevices; ++device)
        stack.addDevice({.address = addressOf(device), .name = "device"});
    BluetoothPeerManager manager([&] { return std::make_unique<BlueZBackend>(bus.address()); });
    PeerStarts use;
    for (std::uint64_t i = 0; i < starts; ++i) {
        startAndStop(manager, stack);
        if (i == starts / 10)
            use.before = ProcessUse::now();
    }
    use.after = ProcessUse::now();
    return use;
}

} // namespace orbelantine::soak
