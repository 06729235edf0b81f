#include "core/common/errors/linux/LinuxErrors.h"

#include <cerrno>

namespace orbelantine {

namespace {

constexpr struct {
    int errnoValue;
    std::uint32_t error;
} kErrors[] = {
    {ENOENT, win32::kErrorFileNotFound},         {EMFILE, win32::kErrorTooManyOpenFiles},
    {ENFILE, win32::kErrorTooManyOpenFiles},     {EACCES, win32::kErrorAccessDenied},
    {EPERM, win32::kErrorAccessDenied},          {EBADF, win32::kErrorInvalidHandle},
    {ENOMEM, win32::kErrorNotEnoughMemory},      {ENOBUFS, win32::kErrorNotEnoughMemory},
    {EMSGSIZE, win32::kErrorBadLength},          {ENAMETOOLONG, win32::kErrorFilenameTooLong},
    {EPIPE, win32::kErrorDeviceNotConnected},    {ECONNRESET, win32::kErrorDeviceNotConnected},
    {ENOTCONN, win32::kErrorDeviceNotConnected},
};

} // namespace

std::uint32_t windowsError(int errnoValue) {
    for (const auto& known : kErrors)
        if (known.errnoValue == errnoValue)
            return known.error;
    return win32::kErrorGenFailure;
}

} // namespace orbelantine
