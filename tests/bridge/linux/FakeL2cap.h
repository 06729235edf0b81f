#pragma once

#include "tools/l2cap_bridge/Options.h"
#include "tools/l2cap_bridge/linux/L2capApi.h"

#include <poll.h>
#include <sys/socket.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace orbelantine::bridge {

/// A bridge of that folder to the phone at 00:11:22:33:44:55, without a record.
inline Options optionsIn(const std::string& folder) {
    Options options;
    options.devices = folder;
    options.address = {{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}};
    options.publishRecord = false;
    return options;
}

/// A radio with one phone in reach: each channel is a pair of local sockets, the other end of which
/// is the phone's. Any thread may call.
class FakeL2cap final : public L2capApi {
  public:
    using Bytes = std::vector<std::uint8_t>;

    void simulateRadio(Error error) { mRadio = error; }

    /// How connects end from here on; with EINPROGRESS they go on until finishConnect().
    void simulateConnect(Error error) { mConnect = error; }

    /// Every packet fails to go out, with this error.
    void simulateSend(Error error) { mSend = error; }

    void finishConnect(std::uint16_t psm, Error error) {
        mOutcome = error;
        drain(phoneEnd(psm));
    }

    void hangUp(std::uint16_t psm) {
        const std::lock_guard lock(mMutex);
        mPhone.erase(psm);
    }

    void sendFromPhone(std::uint16_t psm, const Bytes& packet) {
        static_cast<void>(::send(phoneEnd(psm), packet.data(), packet.size(), MSG_NOSIGNAL));
    }

    /// What the phone got next on a channel; waits for it. Nothing once the channel is closed.
    std::optional<Bytes> received(std::uint16_t psm) {
        Bytes bytes(1024);
        const ssize_t size = ::recv(phoneEnd(psm), bytes.data(), bytes.size(), 0);
        if (size <= 0)
            return std::nullopt;
        bytes.resize(static_cast<std::size_t>(size));
        return bytes;
    }

    /// So that nothing more fits.
    static void fill(int socket) {
        while (::send(socket, "", 1, MSG_DONTWAIT | MSG_NOSIGNAL) > 0) {
        }
    }

    /// The bridge's end of a channel.
    int bridgeEnd(std::uint16_t psm) {
        const std::lock_guard lock(mMutex);
        return mBridge.at(psm);
    }

    static void drain(int socket) {
        std::uint8_t byte = 0;
        while (::recv(socket, &byte, 1, MSG_DONTWAIT | MSG_TRUNC) > 0) {
        }
    }

    int phoneEnd(std::uint16_t psm) {
        const std::lock_guard lock(mMutex);
        return mPhone.at(psm).get();
    }

    [[nodiscard]] phone::Address peer() const { return mPeer; }

    Error radio() override { return mRadio; }

    Error socket(FileDescriptor& socket) override {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
            return errno;
        socket = FileDescriptor(ends[0]);
        const std::lock_guard lock(mMutex);
        mNewEnd = FileDescriptor(ends[1]);
        return 0;
    }

    Error connect(int socket, const phone::Address& peer, std::uint16_t psm) override {
        const std::lock_guard lock(mMutex);
        mPeer = peer;
        mBridge[psm] = socket;
        mPhone[psm] = std::move(mNewEnd);
        if (mConnect == EINPROGRESS)
            fill(socket);
        return mConnect;
    }

    Error error(int) override { return mOutcome; }

    Error send(int socket, std::span<const std::uint8_t> packet) override {
        if (const Error error = mSend)
            return error;
        return ::send(socket, packet.data(), packet.size(), MSG_DONTWAIT | MSG_NOSIGNAL) < 0 ? errno
                                                                                             : 0;
    }

    Error receive(int socket, std::span<std::uint8_t> buffer, std::size_t& size) override {
        const ssize_t received = ::recv(socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
        size = received < 0 ? 0 : static_cast<std::size_t>(received);
        return received < 0 ? errno : 0;
    }

  private:
    std::atomic<Error> mRadio = 0;
    std::atomic<Error> mConnect = 0;
    std::atomic<Error> mOutcome = 0;
    std::atomic<Error> mSend = 0;
    std::mutex mMutex;
    phone::Address mPeer;
    FileDescriptor mNewEnd;
    std::map<std::uint16_t, FileDescriptor> mPhone;
    std::map<std::uint16_t, int> mBridge;
};

} // namespace orbelantine::bridge
