#pragma once

#include "bluetooth/BluetoothPeer.h"
#include "core/common/KVStore.h"
#include "hid/HidInputClient.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/input/FakeInputContext.h"

#include <boost/smart_ptr/make_shared.hpp>

#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace orbelantine::test {

/// Scan codes of set 1.
enum ScanCode : std::uint32_t { kScanA = 30, kScanB = 48, kScanC = 46, kScanShift = 42 };

/// The whole road of a host: a surface whose input goes to the phone at 00:11:22:33:44:55.
class Session {
  public:
    explicit Session(IClock& clock = IClock::system()) { renew(clock); }

    void renew(IClock& clock = IClock::system()) {
        client.emplace(KVStore(), clock);
        client->setInputContext(surface);
    }

    error_code connect() {
        return await([this](const auto& done) { client->connect(peer, done); });
    }

    error_code disconnect() {
        return await([this](const auto& done) { client->disconnect(done); });
    }

    /// Until the client's and the manager's workers have done what was posted to them. Connected
    /// sessions only.
    void settle() { (void)connect(); }

    void key(bool down, std::uint32_t scanCode) const { surface->simulateKey(down, 0, scanCode); }

    void type(std::uint32_t scanCode) const {
        key(true, scanCode);
        key(false, scanCode);
    }

    const BluetoothPeer peer{CMacAddress(std::uint64_t{0x001122334455})};
    const boost::shared_ptr<FakeInputContext> surface = boost::make_shared<FakeInputContext>();
    std::optional<HidInputClient> client;
};

/// Ends the process, with what was going on, when nothing happens for too long.
class Watchdog {
  public:
    explicit Watchdog(std::chrono::seconds bound)
        : mBound(bound)
        , mThread([this] { watch(); }) {}

    ~Watchdog() {
        {
            const std::lock_guard lock(mMutex);
            mEnded = true;
        }
        mChanged.notify_all();
        mThread.join();
    }

    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// Begins something; the bound counts anew.
    void begin(const std::string& what) {
        {
            const std::lock_guard lock(mMutex);
            mWhat = what;
            ++mBegun;
        }
        mChanged.notify_all();
    }

  private:
    void watch() {
        std::unique_lock lock(mMutex);
        while (!mEnded) {
            const unsigned before = mBegun;
            if (mChanged.wait_for(lock, mBound, [&] { return mEnded || mBegun != before; }))
                continue;
            std::cerr << "hangs: " << mWhat << std::endl;
            std::abort();
        }
    }

    const std::chrono::seconds mBound;
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::string mWhat = "the start";
    unsigned mBegun = 0;
    bool mEnded = false;
    std::thread mThread;
};

} // namespace orbelantine::test
