#include "bluetooth/dbus/linux/Bus.h"

#include "bluetooth/dbus/linux/BlueZNames.h"

#include <sdbus-c++/sdbus-c++.h>

#include <utility>

namespace orbelantine::dbus {

namespace {

std::unique_ptr<sdbus::IConnection> connectTo(const std::string& address) {
    return address.empty() ? sdbus::createSystemBusConnection()
                           : sdbus::createSessionBusConnectionWithAddress(address);
}

sdbus::IConnection::PollData pollData(const sdbus::IConnection& connection, bool lost) {
    if (lost)
        return {-1, 0, Bus::kNoTimeout};
    try {
        return connection.getEventLoopPollData();
    } catch (const sdbus::Error&) {
        // It has just closed: process() is to see that at once.
        return {-1, 0, 0};
    }
}

} // namespace

Bus::Bus(const std::string& address)
    : mConnection(connectTo(address)) {
    mConnection->setMethodCallTimeout(kLongestCall);
}

Bus::~Bus() = default;

std::unique_ptr<sdbus::IProxy> Bus::blueZ(const std::string& path) {
    return sdbus::createProxy(*mConnection, kBlueZ, path);
}

void Bus::watchOwner(const std::string& name, std::function<void(const std::string&)> handler) {
    mDaemon = sdbus::createProxy(*mConnection, kDBus, kDBusPath);
    mDaemon->uponSignal("NameOwnerChanged")
        .onInterface(kDBus)
        .call([this, name, handler = std::move(handler)](
                  const std::string& changed, const std::string&, const std::string& owner) {
            // Anybody may send a signal to one client alone.
            const bool genuine = mDaemon->getCurrentlyProcessedMessage()->getSender() == kDBus;
            if (genuine && changed == name)
                handler(owner);
        });
    mDaemon->finishRegistration();
}

Bus::State Bus::process(unsigned most) {
    if (mLost)
        return State::Lost;
    try {
        for (unsigned i = 0; i < most; ++i)
            // A bus that closes ends one call after the other, and says each time that it idles.
            if (!mConnection->processPendingRequest() && dueAt() != 0)
                return State::Idle;
        return State::More;
    } catch (const sdbus::Error&) {
        mLost = true;
        return State::Lost;
    }
}

pollfd Bus::wanted() const {
    const auto data = pollData(*mConnection, mLost);
    return {data.fd, data.events, 0};
}

int Bus::pollTimeout() const {
    return pollData(*mConnection, mLost).getPollTimeout();
}

std::uint64_t Bus::dueAt() const {
    return pollData(*mConnection, mLost).timeout_usec;
}

} // namespace orbelantine::dbus
