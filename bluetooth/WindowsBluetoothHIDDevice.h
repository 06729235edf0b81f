#pragma once

#include "bluetooth/BluetoothDriver.h"
#include "core/common/run/Clock.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace orbelantine {

/// The HID driver under one L2CAP channel. All requests block until the driver answers.
class WindowsBluetoothHIDDevice : public BluetoothDriver {
  public:
    enum class Channel { Unknown, Gone, Stands };

    /// Many instances may share one device path: each channel has a handle of its own.
    explicit WindowsBluetoothHIDDevice(DriverApi& api = DriverApi::system(),
                                       IClock& clock = IClock::system(),
                                       DeviceBreaker* breaker = nullptr);

    /// Opens the driver by the first of its interface classes that works.
    [[nodiscard]] error_code open(const RemovalCallback& removalCallback = {});
    /// Success only for the very version that this system speaks.
    [[nodiscard]] error_code checkVersion();
    /// Opens the L2CAP channel; the channel's number, or 0 on failure.
    [[nodiscard]] std::int32_t connect(const std::string& address, std::uint16_t psm);
    /// Unknown when the handle is closed or the driver doesn't answer.
    [[nodiscard]] Channel isConnected();
    /// Sends one L2CAP payload in one write.
    [[nodiscard]] bool sendData(const void* buffer, std::size_t length);
    /// The driver's device type; false leaves `type` alone.
    [[nodiscard]] bool getType(std::uint32_t& type);

    /// The number of the connected channel, -1 before.
    [[nodiscard]] std::int32_t channel() const { return mChannel; }

  private:
    using BthAddress = std::array<std::uint8_t, 6>;

    [[nodiscard]] static bool convertBthAddress(const std::string& text, BthAddress& address);
    [[nodiscard]] std::uint64_t tickCount() const;

    std::int32_t mChannel = -1;
    IClock& mClock;
};

} // namespace orbelantine
