#pragma once

#include "bluetooth/Guid.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace orbelantine {

/// The system calls towards the private driver, one operation for each. Every operation returns
/// the system's error number in the Windows numbering, 0 for success; outputs are meaningful only
/// then. Any thread may call.
class DriverApi {
  public:
    using Error = std::uint32_t;
    using Handle = std::intptr_t;
    static constexpr Handle kInvalidHandle = -1;

    static constexpr std::uint32_t kDigcfPresent = 0x02;
    static constexpr std::uint32_t kDigcfDeviceInterface = 0x10;
    static constexpr std::uint32_t kGenericRead = 0x80000000;
    static constexpr std::uint32_t kGenericWrite = 0x40000000;
    static constexpr std::uint32_t kFileShareRead = 0x1;
    static constexpr std::uint32_t kFileShareWrite = 0x2;
    static constexpr std::uint32_t kOpenExisting = 3;
    static constexpr std::uint32_t kNotifyFilterDeviceHandle = 1;
    static constexpr std::uint32_t kNotifyActionQueryRemove = 2;

    /// SP_DEVICE_INTERFACE_DATA.
    struct InterfaceData {
        std::uint32_t size = sizeof(InterfaceData);
        Guid classGuid{};
        std::uint32_t flags = 0;
        std::uintptr_t reserved = 0;
    };

    static_assert(sizeof(InterfaceData) == 32);

    /// SP_DEVICE_INTERFACE_DETAIL_DATA_W; `devicePath` goes on to its terminator.
    struct InterfaceDetail {
        std::uint32_t size;
        wchar_t devicePath[1];
    };

    static_assert(sizeof(InterfaceDetail) == 8);

    /// CM_NOTIFY_FILTER for a device handle.
    struct NotifyFilter {
        std::uint32_t size;
        std::uint32_t flags;
        std::uint32_t type;
        std::uint32_t reserved;
        Handle target;
        std::array<std::byte, 392> unused;
    };

    static_assert(sizeof(NotifyFilter) == 416);

    /// Runs on a thread of the system; never after unregisterNotification has returned, which
    /// comes before the handle is closed.
    using NotifyCallback = Error (*)(void* context, std::uint32_t action);

    virtual ~DriverApi() = default;

    /// SetupDiGetClassDevsW without enumerator and parent window.
    [[nodiscard]] virtual Error setupDiGetClassDevs(const Guid& classGuid, std::uint32_t flags,
                                                    Handle& list) = 0;
    [[nodiscard]] virtual Error setupDiEnumDeviceInterfaces(Handle list, const Guid& classGuid,
                                                            std::uint32_t index,
                                                            InterfaceData& data) = 0;
    /// `detail` may be null with a `size` of 0; `required` is set then too.
    [[nodiscard]] virtual Error
    setupDiGetDeviceInterfaceDetail(Handle list, const InterfaceData& data, InterfaceDetail* detail,
                                    std::uint32_t size, std::uint32_t& required) = 0;
    virtual void setupDiDestroyDeviceInfoList(Handle list) = 0;

    [[nodiscard]] virtual Error localAlloc(std::size_t size, void*& memory) = 0;
    virtual void localFree(void* memory) = 0;

    /// CreateFileW without security attributes and template.
    [[nodiscard]] virtual Error createFile(const std::wstring& path, std::uint32_t access,
                                           std::uint32_t share, std::uint32_t disposition,
                                           std::uint32_t flags, Handle& file) = 0;
    /// Nobody uses the handle any more: on Windows, closing waits for a request in progress, and a
    /// handle's value may come again with the next opening.
    virtual void closeHandle(Handle file) = 0;
    /// Ends the requests and writes in progress on the handle: they fail, with
    /// kErrorOperationAborted on Windows. On Linux so do all to come.
    virtual void cancelRequests(Handle file) = 0;
    /// Blocks until the driver answers or the request is cancelled.
    [[nodiscard]] virtual Error deviceIoControl(Handle file, std::uint32_t code, const void* input,
                                                std::uint32_t inputSize, void* output,
                                                std::uint32_t outputSize,
                                                std::uint32_t& returned) = 0;
    [[nodiscard]] virtual Error writeFile(Handle file, const void* data, std::uint32_t size,
                                          std::uint32_t& written) = 0;

    [[nodiscard]] virtual Error registerNotification(const NotifyFilter& filter, void* context,
                                                     NotifyCallback callback,
                                                     Handle& notification) = 0;
    /// Waits for a callback in progress.
    virtual void unregisterNotification(Handle notification) = 0;

    /// The process's real system; lives until the process ends.
    static DriverApi& system();
};

} // namespace orbelantine
