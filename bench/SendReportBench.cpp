#include "bluetooth/DriverProtocol.h"
#include "bluetooth/linux/DeviceFolder.h"
#include "core/common/config/KVStore.h"
#include "core/common/types/linux/FileDescriptor.h"
#include "hid/channel/HIDDeviceClient.h"
#include "hid/reports/HIDReportProvider.h"

#include <benchmark/benchmark.h>
#include <boost/smart_ptr/make_shared.hpp>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <filesystem>
#include <list>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace orbelantine {
namespace {

constexpr const char* kAddress = "01:23:45:67:89:AB";
// A relative mouse report with its transaction header.
constexpr std::uint8_t kMoveReport[] = {0xA1, 0x02, 0x00, 0x05, 0x00, 0xFB, 0xFF, 0x00, 0x00};
constexpr std::size_t kHeaderSize = 4;

sockaddr_un addressOf(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof(address.sun_path) - 1);
    return address;
}

int makeSocket() {
    return ::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
}

/// A driver that agrees to everything and reads what it gets, each connection on its own thread.
class DrainedDevice {
  public:
    explicit DrainedDevice(const std::filesystem::path& path)
        : mListener(makeSocket()) {
        const sockaddr_un address = addressOf(path);
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        if (::bind(mListener.get(), generic, sizeof(address)) != 0 ||
            ::listen(mListener.get(), 4) != 0)
            throw std::runtime_error("no socket at " + path.string());
        mAcceptor = std::thread([this] { acceptAll(); });
    }

    /// Once the other sides have hung up.
    ~DrainedDevice() {
        ::shutdown(mListener.get(), SHUT_RDWR);
        mAcceptor.join();
        for (auto& drain : mDrains)
            drain.join();
    }

    DrainedDevice(const DrainedDevice&) = delete;
    DrainedDevice& operator=(const DrainedDevice&) = delete;

  private:
    void acceptAll() {
        for (;;) {
            const int fd = ::accept(mListener.get(), nullptr, nullptr);
            if (fd < 0)
                return;
            mDrains.emplace_back([fd] { drain(FileDescriptor(fd)); });
        }
    }

    static void drain(const FileDescriptor& link) {
        std::uint32_t code = 0;
        char packet[64];
        while (::recv(link.get(), packet, sizeof(packet), 0) > 0) {
            std::memcpy(&code, packet, sizeof(code));
            if (code != 0)
                reply(link.get(), code);
        }
    }

    static void reply(int fd, std::uint32_t code) {
        const bool asksVersion = code == driver::kGetVersion;
        const std::uint8_t answer[] = {0, 0, 0, 0, driver::kExpectedHidVersion, 0};
        ::send(fd, answer, asksVersion ? sizeof(answer) : kHeaderSize, MSG_NOSIGNAL);
    }

    FileDescriptor mListener;
    std::thread mAcceptor;
    std::list<std::thread> mDrains;
};

/// A device folder with one such device.
class DeviceOnThisMachine {
  public:
    DeviceOnThisMachine() {
        char name[] = "/tmp/orbelantine-bench-XXXXXX";
        mFolder = mkdtemp(name);
        setenv("ORBELANTINE_DEVICE_DIR", name, 1);
        std::filesystem::create_directory(path().parent_path());
        mDevice.emplace(path());
    }

    ~DeviceOnThisMachine() {
        mDevice.reset();
        unsetenv("ORBELANTINE_DEVICE_DIR");
        std::filesystem::remove_all(mFolder);
    }

    [[nodiscard]] std::filesystem::path path() const {
        return mFolder / classFolderName(driver::kHidInterfaces[0]) / "phone}_LOCALMFG";
    }

  private:
    std::filesystem::path mFolder;
    std::optional<DrainedDevice> mDevice;
};

boost::shared_ptr<HIDDeviceClient> connectedClient() {
    auto client = boost::make_shared<HIDDeviceClient>();
    if (client->connect(kAddress))
        throw std::runtime_error("no connection");
    return client;
}

void sendReportOurs(benchmark::State& state) {
    const DeviceOnThisMachine device;
    const auto client = connectedClient();
    for (auto _ : state)
        client->sendReport(kMoveReport, sizeof(kMoveReport));
}

void mouseMoveOurs(benchmark::State& state) {
    const DeviceOnThisMachine device;
    const auto client = connectedClient();
    HIDReportProvider provider{KVStore()};
    provider.setDevice(client);
    for (auto _ : state)
        provider.sendMouseMove(5, -5);
}

void bareSend(benchmark::State& state) {
    const DeviceOnThisMachine device;
    const FileDescriptor link(makeSocket());
    const sockaddr_un address = addressOf(device.path());
    if (::connect(link.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        throw std::runtime_error("no connection");
    char packet[kHeaderSize + sizeof(kMoveReport)] = {};
    std::memcpy(packet + kHeaderSize, kMoveReport, sizeof(kMoveReport));
    for (auto _ : state)
        benchmark::DoNotOptimize(::send(link.get(), packet, sizeof(packet), MSG_NOSIGNAL));
}

BENCHMARK(sendReportOurs)->Name("BM_SendReport/ours")->UseRealTime();
BENCHMARK(bareSend)->Name("BM_SendReport/bare")->UseRealTime();
BENCHMARK(mouseMoveOurs)->Name("BM_SendMouseMove/ours")->UseRealTime();
BENCHMARK(bareSend)->Name("BM_SendMouseMove/bare")->UseRealTime();

} // namespace
} // namespace orbelantine
