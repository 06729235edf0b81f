#pragma once

#include "tools/l2cap_bridge/Options.h"
#include "tools/l2cap_bridge/linux/Handle.h"
#include "tools/virtual_phone/driver/linux/DeviceSocket.h"

#include <poll.h>

#include <chrono>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace orbelantine::bridge {

class PollSource;

/// The device's socket and the handles open on it. Everything happens in step(), on its thread, and
/// nothing there waits for the phone.
class Bridge {
  public:
    using Milliseconds = std::chrono::milliseconds;

    enum class Outcome { GoesOn, Stopped, RadioLost };

    /// Listens from here on; throws as DeviceSocket. `stopDescriptor` becomes readable when the
    /// bridge is to end.
    Bridge(Parts parts, const Options& options, int stopDescriptor);

    /// Serves this too from here on; it outlives the last step.
    void setSource(PollSource& source) { mSource = &source; }

    /// Waits for something to do, at most `longest`, and does it. Once the radio is lost, every
    /// handle is closed and the device is gone.
    [[nodiscard]] Outcome step(std::optional<Milliseconds> longest = std::nullopt);

    [[nodiscard]] const std::string& folder() const { return mDevices; }

    /// The socket's path; empty once the radio is lost.
    [[nodiscard]] std::string path() const { return mSocket ? mSocket->path() : ""; }

  private:
    [[nodiscard]] std::vector<pollfd> pollList() const;
    [[nodiscard]] int timeout(std::optional<Milliseconds> longest) const;
    void serve(const std::vector<pollfd>& polled);
    void acceptHandles();
    void forgetGone();
    [[nodiscard]] bool loseRadio();

    Parts mParts;
    phone::Address mAddress;
    std::string mDevices;
    int mStopDescriptor;
    PollSource* mSource = nullptr;
    std::optional<phone::DeviceSocket> mSocket;
    std::list<Handle> mHandles;
    unsigned mLastId = 0;
    /// A channel has failed since the radio was last looked at.
    bool mMayBeRadio = false;
};

} // namespace orbelantine::bridge
