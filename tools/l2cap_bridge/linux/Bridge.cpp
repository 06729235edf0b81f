#include "tools/l2cap_bridge/linux/Bridge.h"

#include "tools/l2cap_bridge/linux/L2capApi.h"
#include "tools/l2cap_bridge/linux/PollSource.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orbelantine::bridge {

namespace {

constexpr std::size_t kMaxHandles = 64;
// Places in the poll list; the handles follow, with two each.
constexpr std::size_t kStopPlace = 0;
constexpr std::size_t kListenerPlace = 1;
constexpr std::size_t kFirstHandlePlace = 3;

std::string folderOf(const Options& options) {
    const std::string folder =
        options.devices.empty() ? phone::defaultDeviceFolder() : options.devices;
    return std::filesystem::absolute(folder).string();
}

} // namespace

Bridge::Bridge(Parts parts, const Options& options, int stopDescriptor)
    : mParts(std::move(parts))
    , mAddress(options.address)
    , mDevices(folderOf(options))
    , mStopDescriptor(stopDescriptor)
    , mSocket(std::in_place, mDevices, mAddress) {}

Bridge::Outcome Bridge::step(std::optional<Milliseconds> longest) {
    std::vector<pollfd> polled = pollList();
    if (::poll(polled.data(), polled.size(), timeout(longest)) < 0) {
        if (errno == EINTR)
            return Outcome::GoesOn;
        throw std::system_error(errno, std::generic_category(), "poll");
    }
    // What was sent before the stop still goes out.
    serve(polled);
    if (polled[kStopPlace].revents != 0)
        return Outcome::Stopped;
    if (loseRadio())
        return Outcome::RadioLost;
    if (polled[kListenerPlace].revents != 0)
        acceptHandles();
    if (mSource != nullptr)
        mSource->process();
    return Outcome::GoesOn;
}

std::vector<pollfd> Bridge::pollList() const {
    std::vector<pollfd> list = {{mStopDescriptor, POLLIN, 0},
                                {mSocket ? mSocket->descriptor() : -1, POLLIN, 0},
                                mSource != nullptr ? mSource->wanted() : pollfd{-1, 0, 0}};
    for (const Handle& handle : mHandles)
        for (const pollfd& place : handle.polled())
            list.push_back(place);
    return list;
}

int Bridge::timeout(std::optional<Milliseconds> longest) const {
    Milliseconds wait = longest.value_or(Milliseconds::max());
    if (const int other = mSource != nullptr ? mSource->timeout() : -1; other >= 0)
        wait = std::min(wait, Milliseconds(other));
    for (const Handle& handle : mHandles)
        if (const auto due = handle.due())
            wait = std::min(wait, *due - mParts.now());
    if (wait == Milliseconds::max())
        return -1;
    return static_cast<int>(std::clamp<Milliseconds::rep>(wait.count(), 0, INT_MAX));
}

void Bridge::serve(const std::vector<pollfd>& polled) {
    std::size_t place = kFirstHandlePlace;
    for (Handle& handle : mHandles) {
        handle.serve({polled[place], polled[place + 1]});
        place += std::tuple_size_v<Handle::Polled>;
    }
    forgetGone();
}

void Bridge::acceptHandles() {
    for (;;) {
        FileDescriptor socket(
            ::accept4(mSocket->descriptor(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!socket)
            return;
        // One too many is closed at once.
        if (mHandles.size() < kMaxHandles)
            mHandles.emplace_back(mParts, mAddress, std::move(socket), ++mLastId);
    }
}

void Bridge::forgetGone() {
    for (Handle& handle : mHandles) {
        mMayBeRadio |= handle.takeFailure();
        if (handle.gone())
            handle.close();
    }
    mHandles.remove_if([](const Handle& handle) { return handle.gone(); });
}

bool Bridge::loseRadio() {
    if (!std::exchange(mMayBeRadio, false))
        return false;
    const int error = mParts.l2cap.radio();
    if (error == 0)
        return false;
    mParts.log.write(
        phone::JsonObject().add("event", "radio_lost").add("why", std::strerror(error)));
    mSocket.reset();
    for (Handle& handle : mHandles)
        handle.close();
    mHandles.clear();
    return true;
}

} // namespace orbelantine::bridge
