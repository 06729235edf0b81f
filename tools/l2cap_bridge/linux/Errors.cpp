#include "tools/l2cap_bridge/linux/Errors.h"

#include "core/common/errors/ErrorCode.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <string_view>

namespace orbelantine::bridge {

namespace {

struct WindowsNumber {
    int error;
    std::uint32_t number;
};

constexpr WindowsNumber kWindowsNumbers[] = {
    {EMFILE, win32::kErrorTooManyOpenFiles},
    {ENFILE, win32::kErrorTooManyOpenFiles},
    // The phone or the kernel refuses the key, or there is none: the phone isn't paired.
    {EACCES, win32::kErrorAccessDenied},
    {EPERM, win32::kErrorAccessDenied},
    {EBADE, win32::kErrorAccessDenied},
    {ENOMEM, win32::kErrorNotEnoughMemory},
    {ENOBUFS, win32::kErrorNotEnoughMemory},
    {EAFNOSUPPORT, win32::kErrorNotSupported},
    {EPROTONOSUPPORT, win32::kErrorNotSupported},
    {EINVAL, win32::kErrorInvalidParameter},
    {EMSGSIZE, win32::kErrorInvalidParameter},
    {EBUSY, win32::kErrorBusy},
    // No adapter, or none that leads to the phone.
    {ENODEV, win32::kErrorDeviceNotConnected},
    {ENETDOWN, win32::kErrorDeviceNotConnected},
    {EHOSTUNREACH, win32::kErrorDeviceNotConnected},
    {EHOSTDOWN, win32::kErrorNotFound},
    {ECONNREFUSED, win32::kErrorConnectionRefused},
    {ECONNRESET, win32::kErrorConnectionAborted},
    {ECONNABORTED, win32::kErrorConnectionAborted},
    {ETIMEDOUT, win32::kErrorTimeout},
};

struct Advice {
    int error;
    const char* text;
};

constexpr const char* kNoKernelSupport =
    "this kernel has no Bluetooth: load it with \"modprobe bluetooth\", or use a machine with a "
    "radio";
constexpr const char* kNoPermission =
    "no permission to use Bluetooth: run this as root, or outside of the container";

constexpr Advice kRadioAdvice[] = {
    {EAFNOSUPPORT, kNoKernelSupport},
    {EPROTONOSUPPORT, kNoKernelSupport},
    {EACCES, kNoPermission},
    {EPERM, kNoPermission},
    {ENODEV, "no Bluetooth adapter is up: plug one in, or switch it on with \"bluetoothctl power "
             "on\""},
};

struct NamedAdvice {
    std::string_view name;
    const char* text;
};

constexpr const char* kNoBus =
    "D-Bus can't be reached: start it, name another one with --bus, or do without the record with "
    "--no-record";
constexpr const char* kNoBlueZ =
    "BlueZ doesn't run: start it with \"systemctl start bluetooth\", or do without the record with "
    "--no-record";
constexpr const char* kInputPlugin =
    "another service has the HID record, mostly BlueZ's own input plugin: start bluetoothd with "
    "--noplugin=input, or stop the other bridge";
constexpr const char* kDenied =
    "D-Bus doesn't let this user reach BlueZ: run this as root, or join the group bluetooth";
constexpr const char* kNoAnswer =
    "BlueZ doesn't answer: restart it with \"systemctl restart bluetooth\"";

constexpr NamedAdvice kRecordAdvice[] = {
    {"org.freedesktop.DBus.Error.FileNotFound", kNoBus},
    {"org.freedesktop.DBus.Error.NoServer", kNoBus},
    {"org.freedesktop.DBus.Error.Disconnected", kNoBus},
    {"org.freedesktop.DBus.Error.BadAddress", kNoBus},
    {"org.freedesktop.DBus.Error.InvalidArgs", kNoBus},
    {"System.Error.ECONNREFUSED", kNoBus},
    {"System.Error.ENOENT", kNoBus},
    {"System.Error.ENOTCONN", kNoBus},
    {"org.freedesktop.DBus.Error.ServiceUnknown", kNoBlueZ},
    {"org.freedesktop.DBus.Error.NameHasNoOwner", kNoBlueZ},
    {"org.freedesktop.DBus.Error.Spawn.ChildExited", kNoBlueZ},
    {"org.bluez.Error.NotPermitted", kInputPlugin},
    {"org.bluez.Error.AlreadyExists", kInputPlugin},
    {"org.freedesktop.DBus.Error.AccessDenied", kDenied},
    {"org.freedesktop.DBus.Error.NoReply", kNoAnswer},
    {"org.freedesktop.DBus.Error.Timeout", kNoAnswer},
};

} // namespace

std::uint32_t windowsError(int error) {
    const auto* found = std::ranges::find(kWindowsNumbers, error, &WindowsNumber::error);
    return found == std::end(kWindowsNumbers) ? win32::kErrorGenFailure : found->number;
}

std::string radioAdvice(int error) {
    const auto* found = std::ranges::find(kRadioAdvice, error, &Advice::error);
    if (found != std::end(kRadioAdvice))
        return found->text;
    return std::string("Bluetooth can't be used: ") + std::strerror(error) +
           "; \"dmesg\" may tell more";
}

std::string recordAdvice(const std::string& name, const std::string& message) {
    const auto* found = std::ranges::find(kRecordAdvice, name, &NamedAdvice::name);
    const std::string why = " (" + name + ": " + message + ")";
    if (found != std::end(kRecordAdvice))
        return found->text + why;
    return "BlueZ doesn't take the service record: look at \"journalctl -u bluetooth\", or do "
           "without it with --no-record" +
           why;
}

} // namespace orbelantine::bridge
