#include "bluetooth/WindowsBluetoothHIDDevice.h"

#include "bluetooth/DriverProtocol.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/SystemText.h"
#include "core/common/log/Log.h"

#include <algorithm>
#include <bit>
#include <chrono>

namespace orbelantine {

namespace {

constexpr std::size_t kAddressTextSize = 17;
constexpr std::uint64_t kSlowWriteMs = 5;

// offset 0: address, least significant byte first | 6: PSM | 8: channel
struct ConnectRequest {
    std::array<std::uint8_t, 6> address;
    std::uint16_t psm;
    std::uint16_t channel;
};

static_assert(sizeof(ConnectRequest) == 10 && std::endian::native == std::endian::little);

constexpr std::uint16_t channelOf(std::uint16_t psm) {
    return psm == driver::kInterruptPsm ? 2 : 1;
}

// Digits are read without validation: any character has a value.
constexpr int digitValue(char c) {
    if (c <= '9')
        return c - '0';
    return c - (c <= '`' ? '7' : 'W');
}

/// On one line, though the system ends its texts with a line end.
std::string reasonOf(DriverApi::Error error) {
    std::string text = systemErrorText(static_cast<int>(error));
    text.erase(text.find_last_not_of("\r\n") + 1);
    return text;
}

} // namespace

WindowsBluetoothHIDDevice::WindowsBluetoothHIDDevice(DriverApi& api, IClock& clock,
                                                     DeviceBreaker* breaker)
    : BluetoothDriver(false, api, breaker)
    , mClock(clock) {}

error_code WindowsBluetoothHIDDevice::open(const RemovalCallback& removalCallback) {
    const auto& [preferred, other] = driver::kHidInterfaces;
    const error_code first = BluetoothDriver::open(preferred, driver::kUnbuffered, removalCallback);
    if (!first)
        return first;
    const error_code second = BluetoothDriver::open(other, driver::kUnbuffered, removalCallback);
    const error_code notInstalled = DriverErrors::getErrorCode(DriverErrors::DriverNotInstalled);
    return !second || first == notInstalled ? second : first;
}

error_code WindowsBluetoothHIDDevice::checkVersion() {
    std::int16_t version = -1;
    if (const error_code ec = getVersion(driver::kGetVersion, version)) {
        ORB_LOG(kLogError, "%s() Failed to get HID driver version");
        return ec;
    }
    constexpr int kExpected = driver::kExpectedHidVersion;
    if (version < kExpected) {
        ORB_LOG(kLogError, "%s() HID driver version older than expected: %d reported, %d expected",
                version, kExpected);
        return DriverErrors::getErrorCode(DriverErrors::VersionOld);
    }
    if (version > kExpected) {
        ORB_LOG(kLogError, "%s() HID driver version newer than expected: %d reported, %d expected",
                version, kExpected);
        return DriverErrors::getErrorCode(DriverErrors::VersionNew);
    }
    ORB_LOG(kLogDebug, "%s() HID driver version is %d as expected", version);
    return {};
}

std::int32_t WindowsBluetoothHIDDevice::connect(const std::string& address, std::uint16_t psm) {
    const Use use(*this);
    if (!use) {
        ORB_LOG(kLogError, "%s() Device is not open");
        return 0;
    }
    ConnectRequest request{{}, psm, channelOf(psm)};
    if (!convertBthAddress(address, request.address)) {
        ORB_LOG(kLogError, "%s() no connection: an address looks like 01:23:45:67:89:AB");
        return 0;
    }
    std::uint32_t returned = 0;
    if (const auto error = api().deviceIoControl(use.handle(), driver::kConnect, &request,
                                                 sizeof(request), nullptr, 0, returned)) {
        ORB_LOG(kLogError, "%s() DeviceIoControl failed with error %d", static_cast<int>(error));
        ORB_LOG(kLogError, "%s() no connection: %s", reasonOf(error).c_str());
        return 0;
    }
    mChannel = request.channel;
    return mChannel;
}

bool WindowsBluetoothHIDDevice::convertBthAddress(const std::string& text, BthAddress& address) {
    if (text.size() != kAddressTextSize) {
        ORB_LOG(kLogError, "%s() Wrong size");
        return false;
    }
    const char* pair = text.data();
    for (auto byte = address.rbegin(); byte != address.rend(); ++byte, pair += 3)
        *byte = static_cast<std::uint8_t>(digitValue(pair[0]) * 16 + digitValue(pair[1]));
    return true;
}

WindowsBluetoothHIDDevice::Channel WindowsBluetoothHIDDevice::isConnected() {
    const Use use(*this);
    if (!use) {
        ORB_LOG(kLogError, "%s() Device is not open");
        return Channel::Unknown;
    }
    std::uint32_t answer = 0;
    std::uint32_t returned = 0;
    if (const auto error = api().deviceIoControl(use.handle(), driver::kIsConnected, nullptr, 0,
                                                 &answer, sizeof(answer), returned)) {
        ORB_LOG(kLogError, "%s() DeviceIoControl failed with error %d", static_cast<int>(error));
        return Channel::Unknown;
    }
    return answer == 1 ? Channel::Stands : Channel::Gone;
}

bool WindowsBluetoothHIDDevice::sendData(const void* buffer, std::size_t length) {
    const Use use(*this);
    if (!use) {
        ORB_LOG(kLogError, "%s() Device is not open");
        return false;
    }
    const std::uint64_t start = tickCount();
    std::uint32_t written = 0;
    const auto error =
        api().writeFile(use.handle(), buffer, static_cast<std::uint32_t>(length), written);
    if (error)
        ORB_LOG(kLogError, "%s() WriteFile failed with error %d", static_cast<int>(error));
    if (const auto took = tickCount() - start; took > kSlowWriteMs)
        ORB_LOG(kLogTrace, "%s() WriteFile took %llu ms!!!", static_cast<unsigned long long>(took));
    return error == 0;
}

bool WindowsBluetoothHIDDevice::getType(std::uint32_t& type) {
    const Use use(*this);
    if (!use) {
        ORB_LOG(kLogError, "%s() Device is not open");
        return false;
    }
    std::uint32_t returned = 0;
    const auto error = api().deviceIoControl(use.handle(), driver::kGetType, nullptr, 0, &type,
                                             sizeof(type), returned);
    if (error)
        ORB_LOG(kLogError, "%s() DeviceIoControl failed with error %d", static_cast<int>(error));
    return error == 0;
}

std::uint64_t WindowsBluetoothHIDDevice::tickCount() const {
    const auto sinceStart = mClock.now().time_since_epoch();
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

} // namespace orbelantine
