#include "bluetooth/radio/linux/BlueZErrors.h"

#include "core/common/errors/GenericError.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace orbelantine::bluez {

namespace {

constexpr struct NamedNumber {
    std::string_view name;
    int number;
} kNumbers[] = {
    {"org.bluez.Error.AuthenticationCanceled", win32::kErrorCancelled},
    {"org.bluez.Error.Canceled", win32::kErrorCancelled},
    {"org.bluez.Error.AuthenticationFailed", win32::kErrorNotAuthenticated},
    {"org.bluez.Error.AuthenticationRejected", win32::kErrorNotAuthenticated},
    {"org.bluez.Error.Rejected", win32::kErrorNotAuthenticated},
    {"org.bluez.Error.AuthenticationTimeout", win32::kErrorTimeout},
    {"org.freedesktop.DBus.Error.NoReply", win32::kErrorTimeout},
    {"org.freedesktop.DBus.Error.Timeout", win32::kErrorTimeout},
    {"org.freedesktop.DBus.Error.TimedOut", win32::kErrorTimeout},
    {"org.bluez.Error.ConnectionAttemptFailed", win32::kErrorDeviceNotConnected},
    {"org.bluez.Error.DoesNotExist", win32::kErrorNotFound},
    {"org.freedesktop.DBus.Error.UnknownObject", win32::kErrorNotFound},
    {"org.freedesktop.DBus.Error.UnknownMethod", win32::kErrorNotFound},
    {"org.bluez.Error.AlreadyExists", win32::kErrorNoMoreItems},
    {"org.bluez.Error.InProgress", win32::kErrorBusy},
    {"org.bluez.Error.NotPermitted", win32::kErrorAccessDenied},
    {"org.bluez.Error.NotAuthorized", win32::kErrorAccessDenied},
    {"org.freedesktop.DBus.Error.AccessDenied", win32::kErrorAccessDenied},
    {"org.bluez.Error.NotSupported", win32::kErrorNotSupported},
    {"org.bluez.Error.InvalidArguments", win32::kErrorInvalidParameter},
    {"org.freedesktop.DBus.Error.InvalidArgs", win32::kErrorInvalidParameter},
    {"org.bluez.Error.NotReady", generic::kNetworkDown},
    {"org.freedesktop.DBus.Error.ServiceUnknown", generic::kNetworkDown},
    {"org.freedesktop.DBus.Error.NameHasNoOwner", generic::kNetworkDown},
    {"org.freedesktop.DBus.Error.Disconnected", generic::kNetworkDown},
};

} // namespace

error_code errorOf(const std::string& name) {
    const auto* found = std::ranges::find(kNumbers, name, &NamedNumber::name);
    return genericError(found == std::end(kNumbers) ? int{win32::kErrorGenFailure} : found->number);
}

} // namespace orbelantine::bluez
