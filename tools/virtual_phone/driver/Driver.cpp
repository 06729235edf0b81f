#include "tools/virtual_phone/driver/Driver.h"

#include <boost/endian/conversion.hpp>

#include <algorithm>
#include <iterator>

namespace orbelantine::phone {

namespace {

using device::ConnectInput;
using device::kErrorBusy;
using device::kErrorConnectionRefused;
using device::kErrorInvalidFunction;
using device::kErrorInvalidParameter;
using device::kErrorNotFound;
using device::littleEndian;

} // namespace

struct Driver::Request {
    std::uint32_t code;
    const char* name;
    std::size_t inputSize;
    Answer (*answer)(Driver&, Handle&, Bytes input);
};

const Driver::Request Driver::kRequests[] = {
    {0x220000, "connect", ConnectInput::kSize,
     [](Driver& driver, Handle& handle, Bytes input) { return driver.connect(handle, input); }},
    {0x220004, "get_type", 0,
     [](Driver&, Handle&, Bytes) {
         return Answer{0, littleEndian(device::kRelativeMouse)};
     }},
    {0x220008, "get_version", 0,
     [](Driver& driver, Handle&, Bytes) {
         return Answer{0, littleEndian(driver.mFaults.driverVersion)};
     }},
    {0x22000C, "is_connected", 0,
     [](Driver&, Handle& handle, Bytes) {
         return Answer{0, littleEndian(std::uint32_t{handle.channel ? 1U : 0U})};
     }},
};

Driver::Driver(const Address& address, const Faults& faults, Phone& phone, EventLog& log)
    : mAddress(address)
    , mFaults(faults)
    , mPhone(phone)
    , mLog(log) {}

Driver::HandleId Driver::open() {
    const HandleId id = ++mLastId;
    mHandles.try_emplace(id);
    mLog.write(JsonObject().add("event", "open").add("handle", id));
    return id;
}

void Driver::close(HandleId id) {
    const auto handle = mHandles.find(id);
    if (handle == mHandles.end())
        return;
    drop(handle->second);
    mHandles.erase(handle);
    mLog.write(JsonObject().add("event", "close").add("handle", id));
}

std::optional<Driver::Reply> Driver::packet(HandleId id, Bytes bytes) {
    if (bytes.size() < device::kCodeSize) {
        mPhone.error("a packet has no code", {}, bytes);
        return std::nullopt;
    }
    const std::uint32_t code = boost::endian::load_little_u32(bytes.data());
    const Bytes payload = bytes.subspan(device::kCodeSize);
    if (code != device::kWrite)
        return encode(answer(id, code, payload));
    write(mHandles[id], payload);
    return std::nullopt;
}

void Driver::unreadable(std::string_view what) {
    mPhone.error(what);
}

bool Driver::takeVanish() {
    if (!mFaults.vanishAfter || mPhone.tally().reports < *mFaults.vanishAfter)
        return false;
    mFaults.vanishAfter.reset();
    return true;
}

void Driver::write(const Handle& handle, Bytes payload) {
    if (!handle.channel)
        return mPhone.error("a write on a handle without a channel", {}, payload);
    const Phone::Outcome outcome = mPhone.receive(*handle.channel, payload);
    if (outcome != Phone::Outcome::Unplug || mFaults.keepAfterUnplug)
        return;
    for (auto& [id, open] : mHandles)
        drop(open);
}

Driver::Answer Driver::answer(HandleId id, std::uint32_t code, Bytes payload) {
    const auto* request = std::ranges::find(kRequests, code, &Request::code);
    if (request == std::end(kRequests)) {
        mPhone.error("an unknown request", {}, payload);
        return {kErrorInvalidFunction, {}};
    }
    Answer answer{kErrorInvalidParameter, {}};
    if (payload.size() == request->inputSize)
        answer = request->answer(*this, mHandles[id], payload);
    else
        mPhone.error("a request has not the size of its code", {}, payload);
    mLog.write(JsonObject()
                   .add("event", "request")
                   .add("handle", id)
                   .add("request", request->name)
                   .add("input", payload)
                   .add("error", answer.error)
                   .add("output", answer.output));
    return answer;
}

Driver::Answer Driver::connect(Handle& handle, Bytes payload) {
    const ConnectInput input(payload);
    if (!input.channelFitsPsm()) {
        mPhone.error("a connect request has not the channel of its PSM", {}, payload);
        return {kErrorInvalidParameter, {}};
    }
    if (input.address != mAddress)
        return {kErrorNotFound, {}};
    const std::optional<Channel> channel = channelOfPsm(input.psm);
    const std::uint32_t error = channel ? connectError(*channel, handle) : kErrorConnectionRefused;
    if (error != 0)
        return {error, {}};
    if (channel == Channel::Interrupt && !stands(Channel::Control))
        mPhone.error("the interrupt channel before the control channel", nameOf(*channel));
    handle.channel = channel;
    mPhone.connected(*channel);
    return {};
}

std::uint32_t Driver::connectError(Channel channel, const Handle& handle) const {
    const bool refuses =
        channel == Channel::Control ? mFaults.refuseControl : mFaults.refuseInterrupt;
    if (refuses)
        return kErrorConnectionRefused;
    return handle.channel || stands(channel) ? kErrorBusy : 0;
}

bool Driver::stands(Channel channel) const {
    return std::ranges::any_of(mHandles,
                               [&](const auto& entry) { return entry.second.channel == channel; });
}

void Driver::drop(Handle& handle) {
    if (handle.channel)
        mPhone.disconnected(*handle.channel);
    handle.channel.reset();
}

Driver::Reply Driver::encode(const Answer& answer) {
    constexpr std::size_t kShortReply = 3;
    constexpr std::size_t kExcess = 64;
    constexpr std::uint8_t kExcessByte = 0xEE;
    Reply reply = device::makeReply(answer.error, answer.output);
    if (mFaults.garbage) {
        const std::size_t sizes[] = {kShortReply, sizeof(answer.error), reply.size() + kExcess};
        reply.resize(sizes[mGarbageSent++ % std::size(sizes)], kExcessByte);
    }
    return reply;
}

} // namespace orbelantine::phone
