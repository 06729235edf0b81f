#include "bluetooth/DriverApi.h"

#include "bluetooth/linux/DeviceFolder.h"
#include "bluetooth/linux/DeviceSocket.h"
#include "bluetooth/linux/RemovalWatch.h"
#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/linux/LinuxErrors.h"

#include <cstdlib>
#include <cwchar>
#include <new>
#include <system_error>
#include <vector>

namespace orbelantine {

namespace {

// CONFIGRETs, which are numbered apart.
constexpr DriverApi::Error kCrOutOfMemory = 2;
constexpr DriverApi::Error kCrInvalidData = 31;

using DevicePaths = std::vector<std::wstring>;

template <class T>
T* objectOf(DriverApi::Handle handle) {
    return reinterpret_cast<T*>(handle);
}

template <class T>
DriverApi::Handle handleOf(T* object) {
    return reinterpret_cast<DriverApi::Handle>(object);
}

/// Devices are sockets in a folder; see docs/driver-protocol.md.
class LinuxDriverApi final : public DriverApi {
  public:
    Error setupDiGetClassDevs(const Guid& classGuid, std::uint32_t flags, Handle& list) override {
        auto paths = std::make_unique<DevicePaths>();
        if (const Error error = listDevices(classGuid, (flags & kDigcfPresent) != 0, *paths))
            return error;
        list = handleOf(paths.release());
        return win32::kErrorSuccess;
    }

    Error setupDiEnumDeviceInterfaces(Handle list, const Guid& classGuid, std::uint32_t index,
                                      InterfaceData& data) override {
        if (index >= objectOf<DevicePaths>(list)->size())
            return win32::kErrorNoMoreItems;
        data.classGuid = classGuid;
        data.reserved = index;
        return win32::kErrorSuccess;
    }

    Error setupDiGetDeviceInterfaceDetail(Handle list, const InterfaceData& data,
                                          InterfaceDetail* detail, std::uint32_t size,
                                          std::uint32_t& required) override {
        const std::wstring& path = objectOf<DevicePaths>(list)->at(data.reserved);
        required = static_cast<std::uint32_t>(offsetof(InterfaceDetail, devicePath) +
                                              (path.size() + 1) * sizeof(wchar_t));
        if (!detail || size < required)
            return win32::kErrorInsufficientBuffer;
        if (detail->size != sizeof(InterfaceDetail))
            return win32::kErrorInvalidUserBuffer;
        std::wmemcpy(detail->devicePath, path.c_str(), path.size() + 1);
        return win32::kErrorSuccess;
    }

    void setupDiDestroyDeviceInfoList(Handle list) override { delete objectOf<DevicePaths>(list); }

    Error localAlloc(std::size_t size, void*& memory) override {
        memory = std::malloc(size);
        return memory ? win32::kErrorSuccess : win32::kErrorNotEnoughMemory;
    }

    void localFree(void* memory) override { std::free(memory); }

    Error createFile(const std::wstring& path, std::uint32_t, std::uint32_t, std::uint32_t,
                     std::uint32_t, Handle& file) override {
        std::unique_ptr<DeviceSocket> socket;
        if (const Error error = DeviceSocket::connect(path, socket))
            return error;
        file = handleOf(socket.release());
        return win32::kErrorSuccess;
    }

    void closeHandle(Handle file) override { delete objectOf<DeviceSocket>(file); }

    void cancelRequests(Handle file) override { objectOf<DeviceSocket>(file)->shutDown(); }

    Error deviceIoControl(Handle file, std::uint32_t code, const void* input,
                          std::uint32_t inputSize, void* output, std::uint32_t outputSize,
                          std::uint32_t& returned) override {
        return objectOf<DeviceSocket>(file)->request(code, input, inputSize, output, outputSize,
                                                     returned);
    }

    Error writeFile(Handle file, const void* data, std::uint32_t size,
                    std::uint32_t& written) override {
        const Error error = objectOf<DeviceSocket>(file)->write(data, size);
        written = error ? 0 : size;
        return error;
    }

    Error registerNotification(const NotifyFilter& filter, void* context, NotifyCallback callback,
                               Handle& notification) override {
        if (filter.size != sizeof(filter) || filter.type != kNotifyFilterDeviceHandle)
            return kCrInvalidData;
        try {
            const auto onRemoval = [=] { callback(context, kNotifyActionQueryRemove); };
            notification =
                handleOf(new RemovalWatch(objectOf<DeviceSocket>(filter.target)->fd(), onRemoval));
        } catch (const std::system_error&) {
            return kCrOutOfMemory;
        }
        return win32::kErrorSuccess;
    }

    void unregisterNotification(Handle notification) override {
        delete objectOf<RemovalWatch>(notification);
    }
};

} // namespace

DriverApi& DriverApi::system() {
    static LinuxDriverApi api;
    return api;
}

} // namespace orbelantine
