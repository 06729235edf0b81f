#include "tools/soak/Session.h"

#include "core/common/config/KVStore.h"

#include <boost/smart_ptr/make_shared.hpp>

#include <algorithm>
#include <future>
#include <stdexcept>

namespace orbelantine::soak {

namespace {

using phone::PhoneThread;
using Seen = PhoneThread::Seen;

constexpr std::chrono::milliseconds kAway(20);
constexpr std::uint64_t kLostPairs = 4;
/// Raised at once, before the phone's answer is waited for.
constexpr std::uint64_t kBurstPairs = 32;
/// A move by this much on both axes is two reports, one to and one fro.
constexpr std::int32_t kJiggleDelta = 999;
constexpr std::uint64_t kReportsOfJiggle = 2;
/// An A, then a Backspace: the text stays short.
constexpr std::uint32_t kScanCodes[] = {30, 14};

template <class Operation>
error_code await(Operation operation) {
    std::promise<error_code> promise;
    operation([&](error_code ec) { promise.set_value(ec); });
    return promise.get_future().get();
}

void require(bool happened, const char* what) {
    if (!happened)
        throw std::runtime_error(what);
}

/// Of Android 8, so that the surface is asked for its keys.
KVStore settings() {
    KVStore store;
    store.setStringAt("osVersion", "8.0");
    return store;
}

Kind kindOf(std::uint64_t pair) {
    switch (pair % 8) {
    case 3:
        return RightButton;
    case 7:
        return Jiggle;
    default:
        return Key;
    }
}

} // namespace

Session::Session()
    : mSurface(boost::make_shared<Surface>())
    , mPeer(CMacAddress(std::uint64_t{0x001122334455}))
    , mClient(settings()) {
    mClient.onConnected.connect([this] { ++mLinksUp; });
    mClient.setInputContext(mSurface);
    connect();
    // The mouse listens for its screen some time after the link is up, and begins by parking twice.
    const auto parked = [](const Seen& seen) { return seen.tally.moves >= 2; };
    do
        mSurface->onLogicalDimensionsChanged(1080, 2340, 1.0, 0);
    while (!mPhone.await(parked, std::chrono::milliseconds(500)));
    mBefore = mPhone.seen().tally;
    require(mSurface->awaitKeys(), "the keyboard hangs");
}

void Session::connect() {
    const error_code ec = await([this](const auto& done) { mClient.connect(mPeer, done); });
    if (ec)
        throw std::runtime_error("cannot connect: " + ec.message());
}

void Session::disconnect() {
    (void)await([this](const auto& done) { mClient.disconnect(done); });
    require(mPhone.awaitAllClosed(), "a handle stays open");
}

void Session::raise(std::uint64_t pairs) {
    while (pairs > 0) {
        const std::uint64_t burst = std::min(pairs, kBurstPairs);
        for (std::uint64_t i = 0; i < burst; ++i)
            raisePair(kindOf(mPairs++));
        awaitAll();
        pairs -= burst;
    }
}

void Session::raisePair(Kind kind) {
    mSent[kind] += 2;
    switch (kind) {
    case Key: {
        const std::uint32_t scanCode = kScanCodes[(mSent[Key] / 2 - 1) % std::size(kScanCodes)];
        mSurface->pressKey(scanCode);
        mSurface->onKeyUp(0, scanCode);
        break;
    }
    case RightButton:
        mSurface->onMouseClickDown(IInputContext::MouseButtonRight, 0, 0);
        mSurface->onMouseClickUp(IInputContext::MouseButtonRight, 0, 0);
        break;
    case Jiggle:
        for (int i = 0; i < 2; ++i)
            mSurface->onRelativeMouseMove(kJiggleDelta, kJiggleDelta);
        break;
    }
}

void Session::awaitAll() {
    Counts expected = mSent;
    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] -= mDiscarded[i];
    require(mPhone.await([&](const Seen& seen) { return received(seen.tally) == expected; }),
            "events are lost, or come twice");
}

Counts Session::received() const {
    return received(mPhone.seen().tally);
}

Counts Session::received(const phone::Tally& tally) const {
    constexpr std::size_t kMouse = 0;
    constexpr std::size_t kKeyboard = 1;
    const auto since = [&](std::size_t kind) {
        return tally.reportsByKind[kind] - mBefore.reportsByKind[kind];
    };
    const std::uint64_t moves = tally.moves - mBefore.moves;
    return {since(kKeyboard), since(kMouse) - moves, moves / kReportsOfJiggle};
}

void Session::sleep() {
    pause();
    require(mPhone.awaitAllClosed(), "the link does not sleep");
}

void Session::pause() {
    mClient.pauseConnection();
    // That a session stands already is told once the pause is over.
    (void)await([this](const auto& done) { mClient.connect(mPeer, done); });
}

void Session::vanish() {
    mPhone.vanish(kAway);
    ++mVanishings;
    require(mPhone.await([this](const Seen& seen) { return seen.vanishings == mVanishings; }),
            "the phone does not vanish");
    for (std::uint64_t i = 0; i < kLostPairs; ++i)
        raisePair(Key);
    mDiscarded[Key] += 2 * kLostPairs;
    require(mSurface->awaitKeys(), "the keyboard hangs");
    require(mPhone.await([this](const Seen& seen) { return seen.returns == mVanishings; }),
            "the phone does not come back");
    pause();
}

} // namespace orbelantine::soak
