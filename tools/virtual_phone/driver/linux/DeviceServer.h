#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "tools/virtual_phone/driver/Driver.h"
#include "tools/virtual_phone/driver/linux/DeviceSocket.h"
#include "tools/virtual_phone/log/EventLog.h"
#include "tools/virtual_phone/program/Options.h"

#include <poll.h>

#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace orbelantine::phone {

class ControlPipe;

/// Carries packets between the device's socket and the driver: each connection is one open device
/// handle, and the hang-up is the device's removal. Everything happens in step(), on its thread.
class DeviceServer {
  public:
    using Milliseconds = std::chrono::milliseconds;

    /// What the server serves; all of it outlives the server.
    struct Parts {
        Driver& driver;
        EventLog& log;
        Now now;
    };

    /// Listens from here on; throws as DeviceSocket. `stopDescriptor` becomes readable when the
    /// server is to end.
    DeviceServer(Parts parts, const Options& options, int stopDescriptor);
    DeviceServer(const DeviceServer&) = delete;
    DeviceServer& operator=(const DeviceServer&) = delete;
    ~DeviceServer();

    /// Waits for something to do, at most `longest`, and does it. False once the server is to end.
    [[nodiscard]] bool step(std::optional<Milliseconds> longest = std::nullopt);

    /// Serves the control input too from here on; `control` outlives the last step.
    void setControl(ControlPipe& control) { mControl = &control; }

    /// At the end of this step: disappears, to come back after so long.
    void vanishFor(Milliseconds time) {
        mReturnAfter = time;
        mVanishes = true;
    }

    /// Closes every handle.
    void hangUp();

    [[nodiscard]] const std::string& folder() const { return mDevices; }

    /// The socket's path; empty while the device has vanished.
    [[nodiscard]] std::string path() const { return mSocket ? mSocket->path() : ""; }

  private:
    struct LateReply {
        Milliseconds due;
        Driver::Reply bytes;
    };

    struct Connection {
        FileDescriptor socket;
        Driver::HandleId handle;
        std::deque<LateReply> replies;
        bool gone = false;
    };

    [[nodiscard]] std::vector<pollfd> pollList() const;
    [[nodiscard]] int timeout(std::optional<Milliseconds> longest) const;
    [[nodiscard]] bool stops(const std::vector<pollfd>& polled);
    void serve(const std::vector<pollfd>& polled);
    void readPackets(Connection& connection, bool hungUp);
    void take(Connection& connection, Driver::Bytes packet);
    void acceptConnections();
    void sendDueReplies();
    void forgetGone();
    void vanish();
    void comeBack();

    Parts mParts;
    Address mAddress;
    std::string mDevices;
    Milliseconds mLate;
    std::optional<Milliseconds> mReturnAfter;
    int mStopDescriptor;
    ControlPipe* mControl = nullptr;
    std::optional<DeviceSocket> mSocket;
    std::vector<Connection> mConnections;
    std::optional<Milliseconds> mReturnAt;
    std::optional<Milliseconds> mStopBy;
    bool mVanishes = false;
    bool mEnded = false;
};

} // namespace orbelantine::phone
