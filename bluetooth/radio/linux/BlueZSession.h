#pragma once

#include "bluetooth/IBluetoothImpl.h"
#include "bluetooth/radio/linux/BlueZLink.h"
#include "bluetooth/radio/linux/RadioState.h"
#include "core/common/run/IoThread.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::bluez {

/// A backend between its start and its stop. All of it belongs to its worker; signals and
/// completions come from the worker's queue, never from a handler of the bus, so that they may end
/// all of this.
class BlueZSession : public std::enable_shared_from_this<BlueZSession> {
  public:
    struct Setting {
        /// The bus's address; empty for the system bus.
        std::string bus;
        IClock& clock;
        /// Somebody wants to be asked.
        bool withAgent;
        /// Whose signals fire; until close().
        IBluetoothImpl& owner;
        std::shared_ptr<RadioState> radio;
        boost::shared_ptr<IoThread::Queue> queue;
    };

    explicit BlueZSession(Setting setting)
        : mSetting(std::move(setting)) {}

    /// `onReady` is called once, when BlueZ's objects are read and the agent is registered, or when
    /// that has failed.
    void connect(std::function<void()> onReady);
    /// Nothing comes from here any more.
    void close();

    /// Every task on a session passes through here.
    template <class Task>
    void run(Task task);

    void rescan(const Completion& completion);
    void discover(const Completion& completion, std::uint16_t length);
    void pair(const CMacAddress& address, const Completion& completion);
    void approve(const CMacAddress& address, const Completion& completion);
    void unpair(const CMacAddress& address, const Completion& completion);
    /// Waits for BlueZ's answer.
    [[nodiscard]] error_code setDiscoverable(bool discoverable);

  private:
    [[nodiscard]] BlueZObjects::Events events();
    void objectsRead();
    void registerAgent();
    void agentRegistered(const char* call, const sdbus::Error* error);
    void objectsUnread(const sdbus::Error& error);
    void ready();
    void blueZGone();
    void busLost();
    void adaptersChanged();
    void publish();
    void radioOff();
    void makeAgent();
    /// The path of the adapter, if it is on; else empty.
    [[nodiscard]] std::string radio() const;
    /// The path of a device of the radio, else empty, and the completion is on its way.
    [[nodiscard]] std::string deviceOf(const CMacAddress& address, const char* call,
                                       const Completion& completion);
    /// A completion by what became of a call.
    [[nodiscard]] dbus::Calls::Done completing(const char* call, const Completion& completion);
    void finish(const Completion& completion, error_code ec);
    void report(std::vector<Device> found, const Completion& completion, error_code ec);

    template <class Task>
    void post(Task task);

    Setting mSetting;
    bool mOpen = true;
    // That BlueZ can't be used has been logged.
    bool mToldUnread = false;
    std::function<void()> mOnReady;
    std::unique_ptr<BlueZLink> mLink;
};

template <class Task>
void BlueZSession::run(Task task) {
    if (mOpen)
        task();
    // What came in while the task waited for an answer doesn't show otherwise.
    if (mLink)
        mLink->loop->process();
}

} // namespace orbelantine::bluez
