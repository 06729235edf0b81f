#pragma once

#include "bluetooth/BluetoothPeer.h"
#include "hid/link/HidInputClient.h"
#include "tools/soak/PhoneThread.h"
#include "tools/soak/Surface.h"

#include <array>
#include <atomic>
#include <cstdint>

namespace orbelantine::soak {

enum Kind { Key, RightButton, Jiggle };

inline constexpr std::array<const char*, 3> kKindNames = {"key", "right button", "jiggle"};

/// Of events, which a surface raises, by kind.
using Counts = std::array<std::uint64_t, kKindNames.size()>;

/// The whole road: a surface, the library and a virtual phone. Whatever doesn't happen in time
/// throws std::runtime_error with what it was.
class Session {
  public:
    /// Connects, and wakes the mouse.
    Session();

    /// Raises so many events, half of them downs and half ups, and waits until the phone has them.
    /// `pairs` is half their number.
    void raise(std::uint64_t pairs);
    /// Puts the link to sleep. The next event wakes it.
    void sleep();
    /// The phone goes with some events under way, which are lost, and comes back; the link sleeps
    /// after it.
    void vanish();
    void disconnect();

    [[nodiscard]] const Counts& sent() const { return mSent; }

    /// Those that were raised while the phone was away.
    [[nodiscard]] const Counts& discarded() const { return mDiscarded; }

    [[nodiscard]] Counts received() const;

    [[nodiscard]] std::uint64_t linksUp() const { return mLinksUp; }

    [[nodiscard]] phone::PhoneThread::Seen seen() const { return mPhone.seen(); }

  private:
    void connect();
    void raisePair(Kind kind);
    void awaitAll();
    void pause();
    [[nodiscard]] Counts received(const phone::Tally& tally) const;

    phone::PhoneThread mPhone;
    const boost::shared_ptr<Surface> mSurface;
    const BluetoothPeer mPeer;
    std::atomic<std::uint64_t> mLinksUp = 0;
    HidInputClient mClient;
    phone::Tally mBefore;
    Counts mSent{};
    Counts mDiscarded{};
    std::uint64_t mPairs = 0;
    unsigned mVanishings = 0;
};

} // namespace orbelantine::soak
