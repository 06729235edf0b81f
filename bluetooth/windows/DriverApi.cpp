#include "bluetooth/DriverApi.h"

// clang-format off
#include <windows.h>
#include <cfgmgr32.h>
#include <setupapi.h>
// clang-format on

#include <bit>
#include <memory>

namespace orbelantine {

namespace {

static_assert(sizeof(Guid) == sizeof(GUID));
static_assert(sizeof(DriverApi::InterfaceData) == sizeof(SP_DEVICE_INTERFACE_DATA));
static_assert(sizeof(DriverApi::InterfaceDetail) == sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W));
static_assert(sizeof(DriverApi::NotifyFilter) == sizeof(CM_NOTIFY_FILTER));
static_assert(DriverApi::kDigcfPresent == DIGCF_PRESENT);
static_assert(DriverApi::kDigcfDeviceInterface == DIGCF_DEVICEINTERFACE);
static_assert(DriverApi::kNotifyFilterDeviceHandle == CM_NOTIFY_FILTER_TYPE_DEVICEHANDLE);
static_assert(DriverApi::kNotifyActionQueryRemove == CM_NOTIFY_ACTION_DEVICEQUERYREMOVE);

HANDLE handleOf(DriverApi::Handle handle) {
    return reinterpret_cast<HANDLE>(handle);
}

DriverApi::Error resultOf(BOOL succeeded) {
    return succeeded ? ERROR_SUCCESS : GetLastError();
}

struct Notification {
    DriverApi::NotifyCallback callback;
    void* context;
    HCMNOTIFICATION handle;
};

DWORD CALLBACK forward(HCMNOTIFICATION, PVOID context, CM_NOTIFY_ACTION action,
                       PCM_NOTIFY_EVENT_DATA, DWORD) {
    const auto* notification = static_cast<const Notification*>(context);
    return notification->callback(notification->context, static_cast<std::uint32_t>(action));
}

// Looked up at run time: Windows before 8 lacks the two calls, and so do the compiler's headers.
template <class Call>
Call findCall(const char* name) {
    const HMODULE library = LoadLibraryW(L"cfgmgr32.dll");
    const FARPROC call = library ? GetProcAddress(library, name) : nullptr;
    return reinterpret_cast<Call>(reinterpret_cast<void (*)()>(call));
}

CONFIGRET registerNotificationCall(CM_NOTIFY_FILTER& filter, Notification& notification) {
    using Call =
        CONFIGRET(WINAPI*)(PCM_NOTIFY_FILTER, PVOID, PCM_NOTIFY_CALLBACK, PHCMNOTIFICATION);
    static const auto call = findCall<Call>("CM_Register_Notification");
    return call ? call(&filter, &notification, &forward, &notification.handle)
                : CR_CALL_NOT_IMPLEMENTED;
}

void unregisterNotificationCall(const Notification& notification) {
    using Call = CONFIGRET(WINAPI*)(HCMNOTIFICATION);
    static const auto call = findCall<Call>("CM_Unregister_Notification");
    if (call)
        call(notification.handle);
}

class WindowsDriverApi final : public DriverApi {
  public:
    Error setupDiGetClassDevs(const Guid& classGuid, std::uint32_t flags, Handle& list) override {
        const GUID guid = std::bit_cast<GUID>(classGuid);
        const HDEVINFO made = SetupDiGetClassDevsW(&guid, nullptr, nullptr, flags);
        if (made == INVALID_HANDLE_VALUE)
            return GetLastError();
        list = reinterpret_cast<Handle>(made);
        return ERROR_SUCCESS;
    }

    Error setupDiEnumDeviceInterfaces(Handle list, const Guid& classGuid, std::uint32_t index,
                                      InterfaceData& data) override {
        const GUID guid = std::bit_cast<GUID>(classGuid);
        auto native = std::bit_cast<SP_DEVICE_INTERFACE_DATA>(data);
        const Error error =
            resultOf(SetupDiEnumDeviceInterfaces(handleOf(list), nullptr, &guid, index, &native));
        data = std::bit_cast<InterfaceData>(native);
        return error;
    }

    Error setupDiGetDeviceInterfaceDetail(Handle list, const InterfaceData& data,
                                          InterfaceDetail* detail, std::uint32_t size,
                                          std::uint32_t& required) override {
        auto native = std::bit_cast<SP_DEVICE_INTERFACE_DATA>(data);
        DWORD needed = 0;
        const Error error = resultOf(SetupDiGetDeviceInterfaceDetailW(
            handleOf(list), &native, reinterpret_cast<PSP_DEVICE_INTERFACE_DETAIL_DATA_W>(detail),
            size, &needed, nullptr));
        required = needed;
        return error;
    }

    void setupDiDestroyDeviceInfoList(Handle list) override {
        SetupDiDestroyDeviceInfoList(handleOf(list));
    }

    Error localAlloc(std::size_t size, void*& memory) override {
        memory = LocalAlloc(LPTR, size);
        return resultOf(memory != nullptr);
    }

    void localFree(void* memory) override { LocalFree(memory); }

    Error createFile(const std::wstring& path, std::uint32_t access, std::uint32_t share,
                     std::uint32_t disposition, std::uint32_t flags, Handle& file) override {
        const HANDLE opened =
            CreateFileW(path.c_str(), access, share, nullptr, disposition, flags, nullptr);
        if (opened == INVALID_HANDLE_VALUE)
            return GetLastError();
        file = reinterpret_cast<Handle>(opened);
        return ERROR_SUCCESS;
    }

    void closeHandle(Handle file) override { CloseHandle(handleOf(file)); }

    void cancelRequests(Handle file) override { CancelIoEx(handleOf(file), nullptr); }

    Error deviceIoControl(Handle file, std::uint32_t code, const void* input,
                          std::uint32_t inputSize, void* output, std::uint32_t outputSize,
                          std::uint32_t& returned) override {
        DWORD bytes = 0;
        const Error error =
            resultOf(DeviceIoControl(handleOf(file), code, const_cast<void*>(input), inputSize,
                                     output, outputSize, &bytes, nullptr));
        returned = bytes;
        return error;
    }

    Error writeFile(Handle file, const void* data, std::uint32_t size,
                    std::uint32_t& written) override {
        DWORD bytes = 0;
        const Error error = resultOf(WriteFile(handleOf(file), data, size, &bytes, nullptr));
        written = bytes;
        return error;
    }

    Error registerNotification(const NotifyFilter& filter, void* context, NotifyCallback callback,
                               Handle& notification) override {
        auto native = std::bit_cast<CM_NOTIFY_FILTER>(filter);
        auto made = std::make_unique<Notification>(Notification{callback, context, nullptr});
        const CONFIGRET result = registerNotificationCall(native, *made);
        if (result == CR_SUCCESS)
            notification = reinterpret_cast<Handle>(made.release());
        return result;
    }

    void unregisterNotification(Handle notification) override {
        const std::unique_ptr<Notification> owned(reinterpret_cast<Notification*>(notification));
        unregisterNotificationCall(*owned);
    }
};

} // namespace

DriverApi& DriverApi::system() {
    static WindowsDriverApi api;
    return api;
}

} // namespace orbelantine
