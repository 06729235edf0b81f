#include "bench/OneProcessor.h"
#include "core/common/crash/CExceptionHandler.h"
#include "core/common/run/IoThread.h"
#include "core/common/types/linux/FileDescriptor.h"
#include "hid/channel/IHIDDeviceClient.h"
#include "hid/link/BluetoothHIDClientManager.h"
#include "tests/hid/HidChainFixture.h"

#include <benchmark/benchmark.h>
#include <sys/socket.h>

#include <array>
#include <stdexcept>

namespace orbelantine {
namespace {

constexpr std::uint64_t kIdleTimeout = 60000;
constexpr std::uint8_t kReport[] = {0xA1, 0x01, 0x00, 0x05, 0x00, 0x00, 0x00, 0x00, 0x00};

std::array<int, 2> socketPair() {
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        throw std::runtime_error("no socket pair");
    return ends;
}

/// A socket to a phone that reads at once.
class PhoneSocket {
  public:
    void write(const std::uint8_t* data, std::size_t size) {
        std::uint8_t received[64];
        if (::send(mOurs.get(), data, size, 0) < 0 ||
            ::recv(mTheirs.get(), received, sizeof(received), 0) < 0)
            throw std::runtime_error("the phone hung up");
    }

  private:
    const std::array<int, 2> mEnds = socketPair();
    FileDescriptor mOurs{mEnds[0]};
    FileDescriptor mTheirs{mEnds[1]};
};

class SocketDevice final : public IHIDDeviceClient {
  public:
    error_code connect(const std::string&) override {
        mConnected = true;
        return {};
    }

    void disconnect() override { mConnected = false; }

    void forceDisconnect() override {}

    bool isConnected() override { return mConnected; }

    void sendReport(const std::uint8_t* data, std::size_t size) override {
        mSocket.write(data, size);
    }

    error_code virtualCableUnplug() override { return {}; }

  private:
    PhoneSocket mSocket;
    bool mConnected = false;
};

/// From the source's frame to the device's socket, with the idle timer running.
void inputRoadOurs(benchmark::State& state) {
    const bench::OneProcessor one;
    test::ChainScript script;
    boost::shared_ptr<test::FakeInputSource> source;
    const test::FactoryOverride<IHIDDeviceClient> devices(
        "HIDDeviceClient", [](const KVStore&) { return boost::make_shared<SocketDevice>(); });
    const test::FactoryOverride<IInputSource, InputFormat> sources(
        "GenericInputSource", [&](const KVStore&, InputFormat) {
            return source = boost::make_shared<test::FakeInputSource>(script);
        });
    BluetoothHIDClientManager manager{KVStore()};
    manager.setIdleTimeout(kIdleTimeout);
    (void)test::await([&](const auto& done) { manager.init(done); });
    (void)test::await([&](const auto& done) { manager.start("", done); });
    for (auto _ : state)
        source->emit(5);
}

/// The same hops between the threads, and the write.
void inputRoadBare(benchmark::State& state) {
    const bench::OneProcessor one;
    PhoneSocket socket;
    IoThread worker("BareIoThread");
    for (auto _ : state) {
        std::promise<void> done;
        auto future = done.get_future();
        worker.post([&socket, done = std::move(done)]() mutable {
            socket.write(kReport, sizeof(kReport));
            done.set_value();
        });
        future.wait();
    }
}

/// With crashes being recorded, were there any.
void inputRoadRecorded(benchmark::State& state) {
    CExceptionHandler handler;
    if (!handler.SetHandler())
        throw std::runtime_error("the handler can't be set");
    inputRoadOurs(state);
}

BENCHMARK(inputRoadRecorded)->Name("BM_RecordedInputRoad/ours")->UseRealTime();
BENCHMARK(inputRoadOurs)->Name("BM_RecordedInputRoad/bare")->UseRealTime();
BENCHMARK(inputRoadOurs)->Name("BM_InputRoad/ours")->UseRealTime();
BENCHMARK(inputRoadBare)->Name("BM_InputRoad/bare")->UseRealTime();

} // namespace
} // namespace orbelantine
