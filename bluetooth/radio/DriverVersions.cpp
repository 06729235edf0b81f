#include "bluetooth/radio/DriverVersions.h"

#include "bluetooth/BluetoothDriver.h"
#include "bluetooth/DriverProtocol.h"
#include "bluetooth/WindowsBluetoothHIDDevice.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/log/Log.h"

#include <optional>
#include <system_error>

namespace orbelantine {

namespace {

/// What `open` comes to, which makes a device first: there may be no thread for that.
template <class Open>
error_code opened(Open open) {
    try {
        return open();
    } catch (const std::system_error& e) {
        return {e.code().value(), boost::system::generic_category()};
    }
}

error_code openHidDriver(std::optional<WindowsBluetoothHIDDevice>& device, DriverApi& api) {
    return opened([&] { return device.emplace(api).open(); });
}

error_code openHandsfreeDriver(std::optional<BluetoothDriver>& device, DriverApi& api) {
    return opened([&] {
        return device.emplace(true, api).open(driver::kHandsfreeInterface, driver::kUnbuffered);
    });
}

} // namespace

std::int32_t hidDriverVersion(DriverApi& api, const char* function) {
    std::optional<WindowsBluetoothHIDDevice> device;
    if (openHidDriver(device, api)) {
        ORB_LOG_TEXT(kLogError, "%s() Unable to open HID driver", function);
        return -1;
    }
    std::int16_t version = -1;
    const error_code ec = device->getVersion(driver::kGetVersion, version);
    return ec ? -1 : version;
}

error_code verifyHidDriver(DriverApi& api, const char* function) {
    std::optional<WindowsBluetoothHIDDevice> device;
    if (const error_code ec = openHidDriver(device, api)) {
        ORB_LOG_TEXT(kLogError, "%s() Unable to open HID driver, error: %s", function,
                     ec.message().c_str());
        return ec;
    }
    return device->checkVersion();
}

error_code verifyHandsfreeDriver(DriverApi& api, const char* function) {
    std::optional<BluetoothDriver> device;
    if (const error_code ec = openHandsfreeDriver(device, api)) {
        ORB_LOG_TEXT(kLogError, "%s() Unable to open HF driver", function);
        return ec;
    }
    std::int16_t version = -1;
    if (const error_code ec = device->getVersion(driver::kGetHandsfreeVersion, version))
        return ec;
    // The lines name the HID driver's number, whatever is compared.
    if (version < driver::kExpectedHandsfreeVersion) {
        ORB_LOG_TEXT(kLogError, "%s() Driver version older than expected: %d vs %d", function,
                     version, driver::kExpectedHidVersion);
        return DriverErrors::getErrorCode(DriverErrors::VersionOld);
    }
    if (version > driver::kExpectedHandsfreeVersion) {
        ORB_LOG_TEXT(kLogError, "%s() Driver version newer than expected: %d vs %d", function,
                     version, driver::kExpectedHidVersion);
        return DriverErrors::getErrorCode(DriverErrors::VersionNew);
    }
    return {};
}

} // namespace orbelantine
