#include "tools/virtual_phone/driver/linux/DeviceServer.h"

#include "tools/device_socket/linux/PacketReader.h"
#include "tools/program/linux/ControlPipe.h"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <filesystem>
#include <system_error>
#include <utility>

namespace orbelantine::phone {

namespace {

constexpr std::size_t kMaxConnections = 64;
/// Packets read from one connection before the others have their turn.
constexpr int kPacketsPerTurn = 64;
/// How long a host that goes on sending can put off the end.
constexpr std::chrono::milliseconds kLongestDrain{500};
// Places in the poll list; the connections follow.
constexpr std::size_t kStopPlace = 0;
constexpr std::size_t kListenerPlace = 1;
constexpr std::size_t kControlPlace = 2;
constexpr std::size_t kFirstConnectionPlace = 3;

std::string folderOf(const Options& options) {
    const std::string folder = options.devices.empty() ? defaultDeviceFolder() : options.devices;
    return std::filesystem::absolute(folder).string();
}

} // namespace

DeviceServer::DeviceServer(Parts parts, const Options& options, int stopDescriptor)
    : mParts(std::move(parts))
    , mAddress(options.address)
    , mDevices(folderOf(options))
    , mLate(options.faults.late)
    , mReturnAfter(options.faults.returnAfter)
    , mStopDescriptor(stopDescriptor)
    , mSocket(std::in_place, mDevices, mAddress) {}

DeviceServer::~DeviceServer() {
    hangUp();
}

bool DeviceServer::step(std::optional<Milliseconds> longest) {
    std::vector<pollfd> polled = pollList();
    if (::poll(polled.data(), polled.size(), timeout(longest)) < 0) {
        if (errno == EINTR)
            return true;
        throw std::system_error(errno, std::generic_category(), "poll");
    }
    if (stops(polled))
        return false;
    // What a host says of the screen and the targets comes before the reports that it sent next.
    if (polled[kControlPlace].revents != 0)
        mControl->read();
    serve(polled);
    // New handles come last, so that a handle closed before another was opened is closed here too.
    if (!mVanishes && polled[kListenerPlace].revents != 0)
        acceptConnections();
    sendDueReplies();
    forgetGone();
    if (std::exchange(mVanishes, false))
        vanish();
    comeBack();
    return !mEnded;
}

void DeviceServer::hangUp() {
    for (Connection& connection : mConnections)
        connection.gone = true;
    forgetGone();
}

std::vector<pollfd> DeviceServer::pollList() const {
    std::vector<pollfd> list = {{mStopDescriptor, POLLIN, 0},
                                {mSocket ? mSocket->descriptor() : -1, POLLIN, 0},
                                {mControl != nullptr ? mControl->descriptor() : -1, POLLIN, 0}};
    for (const Connection& connection : mConnections)
        list.push_back({connection.socket.get(), POLLIN | POLLRDHUP, 0});
    return list;
}

int DeviceServer::timeout(std::optional<Milliseconds> longest) const {
    Milliseconds wait = longest.value_or(Milliseconds::max());
    const Milliseconds now = mParts.now();
    for (const Connection& connection : mConnections)
        if (!connection.replies.empty())
            wait = std::min(wait, connection.replies.front().due - now);
    if (mReturnAt)
        wait = std::min(wait, *mReturnAt - now);
    if (wait == Milliseconds::max())
        return -1;
    return static_cast<int>(std::clamp<Milliseconds::rep>(wait.count(), 0, INT_MAX));
}

bool DeviceServer::stops(const std::vector<pollfd>& polled) {
    if (polled[kStopPlace].revents == 0)
        return false;
    // What was sent before the stop still counts.
    const auto quiet = [](const pollfd& place) { return place.revents == 0; };
    if (!mStopBy)
        mStopBy = mParts.now() + kLongestDrain;
    return mParts.now() >= *mStopBy ||
           std::all_of(polled.begin() + kListenerPlace, polled.end(), quiet);
}

void DeviceServer::serve(const std::vector<pollfd>& polled) {
    for (std::size_t i = 0; i < mConnections.size() && !mVanishes; ++i) {
        const auto events = polled[kFirstConnectionPlace + i].revents;
        if (events != 0)
            readPackets(mConnections[i], (events & (POLLRDHUP | POLLHUP | POLLERR)) != 0);
    }
}

void DeviceServer::readPackets(Connection& connection, bool hungUp) {
    using Result = device::PacketReader::Result;
    device::PacketReader reader;
    for (int i = 0; i < kPacketsPerTurn && !mVanishes; ++i) {
        const Result result = reader.read(connection.socket.get(), hungUp);
        connection.gone = result == Result::End;
        if (result == Result::Nothing || result == Result::End)
            return;
        if (result == Result::TooLong)
            mParts.driver.unreadable("a packet is too long");
        else
            take(connection, reader.packet());
    }
}

void DeviceServer::take(Connection& connection, Driver::Bytes packet) {
    if (auto reply = mParts.driver.packet(connection.handle, packet))
        connection.replies.push_back({mParts.now() + mLate, std::move(*reply)});
    mVanishes = mParts.driver.takeVanish();
}

void DeviceServer::acceptConnections() {
    for (;;) {
        FileDescriptor socket(
            ::accept4(mSocket->descriptor(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!socket)
            return;
        if (mConnections.size() == kMaxConnections)
            mParts.driver.unreadable("too many open handles, a new one is closed");
        else
            mConnections.push_back({std::move(socket), mParts.driver.open(), {}});
    }
}

void DeviceServer::sendDueReplies() {
    const Milliseconds now = mParts.now();
    for (Connection& connection : mConnections) {
        while (!connection.replies.empty() && connection.replies.front().due <= now) {
            const Driver::Reply& reply = connection.replies.front().bytes;
            // A host that doesn't read its replies is hung up on, like one that is gone.
            if (::send(connection.socket.get(), reply.data(), reply.size(),
                       MSG_NOSIGNAL | MSG_DONTWAIT) < 0)
                connection.gone = true;
            connection.replies.pop_front();
        }
    }
}

void DeviceServer::forgetGone() {
    for (const Connection& connection : mConnections)
        if (connection.gone)
            mParts.driver.close(connection.handle);
    std::erase_if(mConnections, [](const Connection& connection) { return connection.gone; });
}

void DeviceServer::vanish() {
    mParts.log.write(JsonObject().add("event", "vanish"));
    mSocket.reset();
    hangUp();
    if (mReturnAfter)
        mReturnAt = mParts.now() + *mReturnAfter;
    mEnded = !mReturnAt;
}

void DeviceServer::comeBack() {
    if (!mReturnAt || mParts.now() < *mReturnAt)
        return;
    mReturnAt.reset();
    mSocket.emplace(mDevices, mAddress);
    mParts.log.write(JsonObject().add("event", "return"));
}

} // namespace orbelantine::phone
