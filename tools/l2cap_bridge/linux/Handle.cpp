#include "tools/l2cap_bridge/linux/Handle.h"

#include "bluetooth/DriverProtocol.h"
#include "tools/device_socket/linux/PacketReader.h"
#include "tools/l2cap_bridge/linux/Errors.h"

#include <boost/endian/conversion.hpp>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <utility>

namespace orbelantine::bridge {

namespace {

/// Packets read from one socket before the others have their turn.
constexpr int kPacketsPerTurn = 64;
constexpr short kHangUp = POLLRDHUP | POLLHUP | POLLERR;

} // namespace

struct Handle::Request {
    std::uint32_t code;
    const char* name;
    std::size_t inputSize;
    std::optional<Answer> (*answer)(Handle&, device::Bytes input);
};

const Handle::Request Handle::kRequests[] = {
    {driver::kConnect, "connect", device::ConnectInput::kSize,
     [](Handle& handle, device::Bytes input) { return handle.connect(input); }},
    {driver::kGetType, "get_type", 0,
     [](Handle&, device::Bytes) {
         return std::optional(Answer{0, device::littleEndian(device::kRelativeMouse)});
     }},
    {driver::kGetVersion, "get_version", 0,
     [](Handle&, device::Bytes) {
         return std::optional(
             Answer{0, device::littleEndian<std::int16_t>(driver::kExpectedHidVersion)});
     }},
    {driver::kIsConnected, "is_connected", 0,
     [](Handle& handle, device::Bytes) {
         const bool stands = handle.channelStands();
         return std::optional(Answer{0, device::littleEndian(std::uint32_t{stands ? 1U : 0U})});
     }},
};

Handle::Handle(const Parts& parts, const phone::Address& peer, FileDescriptor socket, unsigned id)
    : mParts(parts)
    , mPeer(peer)
    , mSocket(std::move(socket))
    , mId(id)
    , mChannel(parts.l2cap) {
    mParts.log.write(event("open"));
}

Handle::Polled Handle::polled() const {
    const bool connecting = mChannel.state() == Channel::State::Connecting;
    const short events = connecting ? POLLRDHUP : POLLIN | POLLRDHUP;
    // A hang-up behind packets that the radio has yet to take isn't looked at before them.
    return {{{mChannel.full() ? -1 : mSocket.get(), events, 0},
             {mChannel.descriptor(), mChannel.events(), 0}}};
}

std::optional<Handle::Milliseconds> Handle::due() const {
    if (mChannel.state() != Channel::State::Connecting)
        return std::nullopt;
    return mChannel.deadline();
}

void Handle::serve(const Polled& events) {
    const auto [library, channel] = events;
    serveChannel(channel.revents);
    if (mChannel.state() == Channel::State::Connecting)
        mGone |= (library.revents & kHangUp) != 0;
    else if (library.revents != 0)
        readPackets((library.revents & kHangUp) != 0);
}

void Handle::close() {
    mGone = true;
    mParts.log.write(event("close"));
}

void Handle::serveChannel(short events) {
    if (mChannel.state() == Channel::State::Connecting) {
        if (const auto outcome = mChannel.settle(events, mParts.now()))
            reply(connectAnswer(*outcome));
        return;
    }
    if (mChannel.full() && (events & POLLOUT) != 0)
        if (const Channel::Error error = mChannel.flush())
            return loseChannel(error);
    if ((events & (POLLIN | kHangUp)) != 0)
        readChannel((events & kHangUp) != 0);
}

// The phone may have left since this turn began.
bool Handle::channelStands() {
    pollfd place{mChannel.descriptor(), mChannel.events(), 0};
    if (mChannel.state() == Channel::State::Standing && ::poll(&place, 1, 0) > 0)
        serveChannel(place.revents);
    return mChannel.state() == Channel::State::Standing;
}

void Handle::readChannel(bool hungUp) {
    for (int i = 0; i < kPacketsPerTurn; ++i) {
        std::optional<device::Bytes> packet;
        if (const Channel::Error error = mChannel.read(hungUp, packet))
            return loseChannel(error);
        if (!packet)
            return;
        // Output reports and handshakes: nothing in the library asks for them.
        mParts.log.write(event("dropped").add("bytes", *packet));
    }
}

bool Handle::readsPackets() const {
    return !mGone && !mChannel.full() && mChannel.state() != Channel::State::Connecting;
}

void Handle::readPackets(bool hungUp) {
    using Result = device::PacketReader::Result;
    device::PacketReader reader;
    for (int i = 0; i < kPacketsPerTurn && readsPackets(); ++i) {
        const Result result = reader.read(mSocket.get(), hungUp);
        mGone = result == Result::End;
        if (result == Result::Nothing || result == Result::End)
            return;
        if (result == Result::TooLong)
            logError("a packet is too long", {});
        else
            take(reader.packet());
    }
}

void Handle::take(device::Bytes packet) {
    if (packet.size() < device::kCodeSize)
        return logError("a packet has no code", packet);
    const std::uint32_t code = boost::endian::load_little_u32(packet.data());
    const device::Bytes payload = packet.subspan(device::kCodeSize);
    if (code == device::kWrite)
        write(payload);
    else if (const auto answered = answer(code, payload))
        reply(*answered);
}

void Handle::write(device::Bytes payload) {
    using State = Channel::State;
    if (mChannel.state() == State::Closed)
        return logError("a write on a handle without a channel", {});
    if (mChannel.state() == State::Standing)
        if (const Channel::Error error = mChannel.write(payload))
            loseChannel(error);
    // Writes have no reply: that they fail shows in the hang-up alone.
    mGone |= mChannel.state() == State::Lost;
}

std::optional<Handle::Answer> Handle::answer(std::uint32_t code, device::Bytes input) {
    const auto* request = std::ranges::find(kRequests, code, &Request::code);
    if (request == std::end(kRequests)) {
        logError("an unknown request", input);
        return Answer{device::kErrorInvalidFunction, {}};
    }
    if (input.size() != request->inputSize) {
        logError("a request has not the size of its code", input);
        return Answer{device::kErrorInvalidParameter, {}};
    }
    mParts.log.write(event("request").add("request", request->name).add("input", input));
    return request->answer(*this, input);
}

std::optional<Handle::Answer> Handle::connect(device::Bytes input) {
    const device::ConnectInput wanted(input);
    if (!wanted.channelFitsPsm())
        return Answer{device::kErrorInvalidParameter, {}};
    if (wanted.address != mPeer)
        return Answer{device::kErrorNotFound, {}};
    if (wanted.psm != driver::kControlPsm && wanted.psm != driver::kInterruptPsm)
        return Answer{device::kErrorConnectionRefused, {}};
    if (mChannel.state() == Channel::State::Standing)
        return Answer{device::kErrorBusy, {}};
    const Channel::Error error = mChannel.connect(mPeer, wanted.psm, mParts.now());
    if (error == EINPROGRESS)
        return std::nullopt;
    return connectAnswer(error);
}

Handle::Answer Handle::connectAnswer(Channel::Error error) {
    const std::uint32_t number = error == 0 ? 0 : windowsError(error);
    if (error == 0) {
        mParts.log.write(event("connected").add("psm", mChannel.psm()));
    } else {
        mFailed = true;
        mParts.log.write(event("connect_failed")
                             .add("psm", mChannel.psm())
                             .add("why", std::strerror(error))
                             .add("error", number));
    }
    return {number, {}};
}

void Handle::reply(const Answer& answer) {
    const device::Reply bytes = device::makeReply(answer.error, answer.output);
    // A library that doesn't read its replies is hung up on, like one that is gone.
    if (::send(mSocket.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0)
        mGone = true;
}

void Handle::loseChannel(Channel::Error error) {
    mChannel.lose();
    mFailed = true;
    mParts.log.write(
        event("disconnected").add("psm", mChannel.psm()).add("why", std::strerror(error)));
}

void Handle::logError(std::string_view what, device::Bytes bytes) {
    mParts.log.write(event("error").add("what", what).add("bytes", bytes));
}

phone::JsonObject Handle::event(std::string_view name) const {
    phone::JsonObject object;
    object.add("event", name).add("handle", mId);
    return object;
}

} // namespace orbelantine::bridge
