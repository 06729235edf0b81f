#pragma once

#include "core/common/run/Clock.h"
#include "core/common/types/CMacAddress.h"

#include <boost/smart_ptr/atomic_shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <string>

namespace orbelantine {

/// One remote Bluetooth device. Shared between its owner's thread, which changes it, and those that
/// read it: any thread may call.
class BluetoothPeer {
  public:
    /// Without an address. Each byte becomes one wide character: no encoding is assumed.
    explicit BluetoothPeer(const std::string& name, IClock& clock = IClock::system());
    /// Without an address.
    explicit BluetoothPeer(const std::wstring& name, IClock& clock = IClock::system());
    explicit BluetoothPeer(const CMacAddress& address, IClock& clock = IClock::system());
    BluetoothPeer(const CMacAddress& address, const std::wstring& name, std::uint32_t deviceClass,
                  bool paired, IClock& clock = IClock::system());
    BluetoothPeer(const BluetoothPeer& other);
    BluetoothPeer& operator=(const BluetoothPeer&) = delete;
    virtual ~BluetoothPeer() = default;

    [[nodiscard]] virtual CMacAddress address() const;
    [[nodiscard]] virtual std::wstring name() const;
    /// The Class of Device.
    [[nodiscard]] virtual std::uint32_t deviceClass() const;
    /// 1 (miscellaneous) to 10 (health) by the major device class; 0 is unknown.
    [[nodiscard]] virtual int deviceType() const;
    [[nodiscard]] virtual bool isPaired() const;
    /// Doesn't count as a sighting.
    virtual void update(const std::wstring& name, std::uint32_t deviceClass, bool paired);
    /// The peer was seen now, as it was when it was made.
    virtual void touch();
    /// Stale until it is seen again.
    virtual void markStale();
    /// Not seen for 30 seconds.
    [[nodiscard]] virtual bool isStale() const;

    /// Whatever the time of the last sighting.
    [[nodiscard]] bool operator==(const BluetoothPeer& other) const;

  private:
    /// What an update replaces, as one.
    struct Details {
        std::wstring name;
        std::uint32_t deviceClass;
        bool paired;
        bool operator==(const Details&) const = default;
    };

    /// The clock in ticks of 100 ns.
    [[nodiscard]] std::int64_t ticks() const;

    const CMacAddress mAddress;
    boost::atomic_shared_ptr<const Details> mDetails;
    // In ticks; 0 is marked stale.
    std::atomic<std::int64_t> mLastSeen;
    IClock& mClock;
};

} // namespace orbelantine
