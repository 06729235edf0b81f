#pragma once

#include "bluetooth/BluetoothPeer.h"
#include "core/common/config/KVStore.h"
#include "hid/link/HidInputClient.h"
#include "tests/hid/HidChainFixture.h"
#include "tests/input/FakeInputContext.h"

#include <boost/smart_ptr/make_shared.hpp>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

namespace orbelantine::test {

/// Scan codes of set 1.
enum ScanCode : std::uint32_t { kScanA = 30, kScanB = 48, kScanShift = 42 };

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

    error_code flush() {
        return await([this](const auto& done) { client->flush(done); });
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

/// Ends the process, with what was going on, when that takes too long. One at a time.
class Watchdog {
  public:
    explicit Watchdog(unsigned seconds)
        : mSeconds(seconds) {
        std::signal(SIGALRM, bark);
    }

    ~Watchdog() { ::alarm(0); }

    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// Begins something; the bound counts anew.
    void begin(const std::string& what) const {
        ::alarm(0);
        sLine = "hangs: " + what + "\n";
        ::alarm(mSeconds);
    }

  private:
    static void bark(int /*signal*/) {
        [[maybe_unused]] const auto written = ::write(STDERR_FILENO, sLine.data(), sLine.size());
        std::abort();
    }

    static inline std::string sLine;
    const unsigned mSeconds;
};

} // namespace orbelantine::test
