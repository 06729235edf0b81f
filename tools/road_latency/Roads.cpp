#include "tools/road_latency/Roads.h"

#include "bluetooth/BluetoothPeer.h"
#include "core/common/config/KVStore.h"
#include "input/window/WindowsHwndInputContext.h"

#include <sys/socket.h>

#include <future>
#include <stdexcept>

namespace orbelantine::latency {

namespace {

constexpr std::uint32_t kScanCodeOfA = 30;
/// As the key's report goes out: the code of a write, then the report.
constexpr std::uint8_t kPacket[] = {0, 0, 0, 0, 0xA1, 2, 0, 0, 4, 0, 0, 0, 0, 0};

template <class Operation>
error_code await(Operation operation) {
    std::promise<error_code> promise;
    operation([&](error_code ec) { promise.set_value(ec); });
    return promise.get_future().get();
}

} // namespace

Session::Session(const boost::shared_ptr<IInputContext>& surface, std::uint64_t idleMs)
    : mClient(KVStore()) {
    mClient.setInputContext(surface);
    mClient.setIdleTimeout(idleMs);
    const BluetoothPeer peer(CMacAddress(std::uint64_t{0x001122334455}));
    if (const error_code ec = await([&](const auto& done) { mClient.connect(peer, done); }))
        throw std::runtime_error("cannot connect: " + ec.message());
}

Session::~Session() {
    (void)await([&](const auto& done) { mClient.disconnect(done); });
}

WindowRoad::WindowRoad(std::uint64_t idleMs)
    : mSession(WindowsHwndInputContext::create(false, mWindow.handle(), false), idleMs) {}

WindowFloor::WindowFloor(const Receiver& receiver)
    : mSocket(receiver.open())
    , mClient([this] {
        while (mWindow.awaitKey())
            (void)::send(mSocket.get(), kPacket, sizeof(kPacket), MSG_NOSIGNAL);
    }) {}

WindowFloor::~WindowFloor() {
    mWindow.end();
    mClient.join();
}

void WholeRoad::raise() {
    mDown = !mDown;
    if (mDown)
        mSurface->onKeyDown(0, kScanCodeOfA, 1);
    else
        mSurface->onKeyUp(0, kScanCodeOfA);
}

void Floor::raise() {
    mFirst.post([this] { pass(); });
}

void Floor::pass() {
    std::unique_lock lock(mMutex);
    mDone = false;
    mSecond.post([this] { write(); });
    mWritten.wait(lock, [this] { return mDone; });
}

void Floor::write() {
    (void)::send(mSocket.get(), kPacket, sizeof(kPacket), MSG_NOSIGNAL);
    {
        const std::lock_guard lock(mMutex);
        mDone = true;
    }
    mWritten.notify_one();
}

} // namespace orbelantine::latency
