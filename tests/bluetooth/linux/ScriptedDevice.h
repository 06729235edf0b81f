#pragma once

#include "bluetooth/DriverApi.h"
#include "bluetooth/linux/DeviceFolder.h"
#include "core/common/types/linux/FileDescriptor.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace orbelantine::test {

/// A socket in the place of one device. Serves one connection, on a thread of its own: each packet
/// goes to the script, which sends what it wants. The end of the script's patience is the hang-up.
class ScriptedDevice {
  public:
    using Packet = std::vector<std::uint8_t>;

    /// Sends a packet to the other side.
    using Send = std::function<void(const Packet&)>;
    /// Returns whether it goes on listening.
    using Script = std::function<bool(const Send&, const Packet&)>;

    ScriptedDevice(const std::filesystem::path& path, Script script)
        : mListener(listenAt(path))
        , mThread([this, script = std::move(script)] { serve(script); }) {}

    ~ScriptedDevice() {
        {
            const std::lock_guard lock(mMutex);
            mEnding = true;
            ::shutdown(mListener.get(), SHUT_RDWR);
            ::shutdown(mLink, SHUT_RDWR);
        }
        mThread.join();
    }

    ScriptedDevice(const ScriptedDevice&) = delete;
    ScriptedDevice& operator=(const ScriptedDevice&) = delete;

    /// A socket that listens there, for the caller to close.
    static int listenAt(const std::filesystem::path& path) {
        std::filesystem::create_directories(path.parent_path());
        const int fd = ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
        ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
        ::listen(fd, 1);
        return fd;
    }

  private:
    static constexpr std::size_t kLongestPacket = 4096;

    void serve(const Script& script) {
        const FileDescriptor link(::accept(mListener.get(), nullptr, nullptr));
        if (!setLink(link.get()))
            return;
        const Send send = [&](const Packet& packet) {
            ::send(link.get(), packet.data(), packet.size(), MSG_NOSIGNAL);
        };
        Packet packet(kLongestPacket);
        for (;;) {
            const auto size = ::recv(link.get(), packet.data(), packet.size(), 0);
            if (size <= 0)
                break;
            if (!script(send, Packet(packet.begin(), packet.begin() + size)))
                break;
        }
        setLink(-1);
    }

    bool setLink(int fd) {
        const std::lock_guard lock(mMutex);
        mLink = fd;
        return !mEnding;
    }

    FileDescriptor mListener;
    std::mutex mMutex;
    int mLink = -1;
    bool mEnding = false;
    std::thread mThread;
};

/// A device folder of its own, found through the environment.
class DeviceFolderFixture : public testing::Test {
  protected:
    DeviceFolderFixture() {
        char name[] = "/tmp/orbelantine-test-XXXXXX";
        mFolder = mkdtemp(name);
        setenv("ORBELANTINE_DEVICE_DIR", mFolder.c_str(), 1);
    }

    ~DeviceFolderFixture() override {
        unsetenv("ORBELANTINE_DEVICE_DIR");
        std::filesystem::remove_all(mFolder);
    }

    [[nodiscard]] std::filesystem::path devicePath(const Guid& interfaceClass,
                                                   const std::string& name = "x}_LOCALMFG") const {
        return mFolder / classFolderName(interfaceClass) / name;
    }

    std::filesystem::path mFolder;
};

} // namespace orbelantine::test
