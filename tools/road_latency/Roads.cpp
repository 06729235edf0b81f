#include "tools/road_latency/Roads.h"

#include "bluetooth/BluetoothPeer.h"
#include "core/common/config/KVStore.h"

#include <boost/smart_ptr/make_shared.hpp>
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

WholeRoad::WholeRoad(std::uint64_t idleMs)
    : mSurface(boost::make_shared<aim::Surface>(1000, 1000))
    , mClient(KVStore()) {
    mClient.setInputContext(mSurface);
    mClient.setIdleTimeout(idleMs);
    const BluetoothPeer peer(CMacAddress(std::uint64_t{0x001122334455}));
    if (const error_code ec = await([&](const auto& done) { mClient.connect(peer, done); }))
        throw std::runtime_error("cannot connect: " + ec.message());
}

WholeRoad::~WholeRoad() {
    (void)await([&](const auto& done) { mClient.disconnect(done); });
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
