#include "tools/l2cap_bridge/linux/Channel.h"

#include "tools/l2cap_bridge/linux/L2capApi.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace orbelantine::bridge {

Channel::Error Channel::connect(const phone::Address& peer, std::uint16_t psm, Milliseconds now) {
    mPsm = psm;
    if (const Error error = mApi.socket(mSocket))
        return keepResult(error);
    mDeadline = now + kLongestConnect;
    return keepResult(mApi.connect(mSocket.get(), peer, psm));
}

std::optional<Channel::Error> Channel::settle(short events, Milliseconds now) {
    if (events == 0 && now < mDeadline)
        return std::nullopt;
    if (events == 0)
        return keepResult(ETIMEDOUT);
    const Error error = mApi.error(mSocket.get());
    // A socket that closed without giving a reason isn't connected either.
    const bool connected = error == 0 && (events & (POLLHUP | POLLERR)) == 0;
    return keepResult(connected || error != 0 ? error : ECONNRESET);
}

Channel::Error Channel::keepResult(Error error) {
    mState = error == 0             ? State::Standing
             : error == EINPROGRESS ? State::Connecting
                                    : State::Closed;
    if (mState == State::Closed)
        mSocket = FileDescriptor();
    return error;
}

Channel::Error Channel::write(device::Bytes packet) {
    const Error error = mApi.send(mSocket.get(), packet);
    if (error != EAGAIN)
        return error;
    std::ranges::copy(packet, mKeptPacket.begin());
    mKept = packet.size();
    return 0;
}

Channel::Error Channel::flush() {
    return write(device::Bytes(mKeptPacket).first(std::exchange(mKept, 0)));
}

Channel::Error Channel::read(bool hungUp, std::optional<device::Bytes>& packet) {
    packet.reset();
    std::size_t size = 0;
    const Error error = mApi.receive(mSocket.get(), mBuffer, size);
    if (error != 0)
        return error == EAGAIN ? 0 : error;
    // An empty packet reads as the end does, but its sender is still there.
    if (size == 0 && hungUp)
        return ECONNRESET;
    packet = device::Bytes(mBuffer).first(size);
    return 0;
}

void Channel::lose() {
    mState = State::Lost;
    mKept = 0;
    mSocket = FileDescriptor();
}

short Channel::events() const {
    if (mState == State::Connecting)
        return POLLOUT;
    return static_cast<short>(POLLIN | POLLRDHUP | (full() ? POLLOUT : 0));
}

} // namespace orbelantine::bridge
