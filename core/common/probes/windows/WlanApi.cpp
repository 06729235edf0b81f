#include "core/common/probes/WlanApi.h"

// clang-format off
#include <windows.h>
#include <objbase.h>
#include <wlanapi.h>
// clang-format on

#include <cstring>
#include <map>
#include <mutex>
#include <utility>

namespace orbelantine {

namespace {

// WLAN_NOTIFICATION_SOURCE_ALL and _NONE, which the compiler's headers leave half declared.
constexpr DWORD kAllSources = 0xffff;
constexpr DWORD kNoSource = 0;

GUID asGuid(const WlanApi::Guid& bytes) {
    static_assert(sizeof(GUID) == sizeof(WlanApi::Guid));
    GUID guid{};
    std::memcpy(&guid, bytes.data(), sizeof guid);
    return guid;
}

WlanApi::Interface described(const WLAN_INTERFACE_INFO& info) {
    WlanApi::Interface adapter;
    std::memcpy(adapter.guid.data(), &info.InterfaceGuid, adapter.guid.size());
    adapter.description = info.strInterfaceDescription;
    adapter.state = static_cast<std::int32_t>(info.isState);
    return adapter;
}

void WINAPI onNotification(PWLAN_NOTIFICATION_DATA data, PVOID listener) {
    (*static_cast<const WlanApi::Notified*>(listener))(data->NotificationSource,
                                                       data->NotificationCode);
}

class WindowsWlanApi final : public WlanApi {
  public:
    [[nodiscard]] Error open(Handle& handle) override {
        DWORD version = 0;
        return WlanOpenHandle(2, nullptr, &version, &handle);
    }

    void close(Handle handle) override {
        // Taken out first: once closed, the handle's value may be another one's.
        const auto listener = taken(handle);
        (void)WlanCloseHandle(handle, nullptr);
    }

    Error listen(Handle handle, Notified notified) override {
        Notified* listener = nullptr;
        {
            const std::lock_guard lock(mMutex);
            listener = (mListeners[handle] = std::make_unique<Notified>(std::move(notified))).get();
        }
        return WlanRegisterNotification(handle, kAllSources, TRUE, onNotification, listener,
                                        nullptr, nullptr);
    }

    void unlisten(Handle handle) override {
        (void)WlanRegisterNotification(handle, kNoSource, TRUE, nullptr, nullptr, nullptr, nullptr);
    }

    [[nodiscard]] Error enumerate(Handle handle, Interfaces& interfaces) override {
        WLAN_INTERFACE_INFO_LIST* list = nullptr;
        const Error error = WlanEnumInterfaces(handle, nullptr, &list);
        if (error != ERROR_SUCCESS)
            return error;
        interfaces.index = list->dwIndex;
        for (DWORD i = 0; i < list->dwNumberOfItems; ++i)
            interfaces.list.push_back(described(list->InterfaceInfo[i]));
        WlanFreeMemory(list);
        return error;
    }

    [[nodiscard]] Error set(Handle handle, const Guid& guid, Operation operation,
                            bool value) override {
        const GUID adapter = asGuid(guid);
        BOOL wanted = value ? TRUE : FALSE;
        return WlanSetInterface(handle, &adapter, static_cast<WLAN_INTF_OPCODE>(operation),
                                sizeof wanted, &wanted, nullptr);
    }

    [[nodiscard]] std::wstring textOf(const Guid& guid) override {
        constexpr int kTextSize = 39;
        std::array<wchar_t, kTextSize> text{};
        return StringFromGUID2(asGuid(guid), text.data(), kTextSize) > 0 ? text.data() : L"";
    }

    [[nodiscard]] Module load(const wchar_t* name) override { return LoadLibraryW(name); }

    [[nodiscard]] Procedure procedure(Module module, const char* name) override {
        return reinterpret_cast<Procedure>(GetProcAddress(static_cast<HMODULE>(module), name));
    }

    void unload(Module module) override { (void)FreeLibrary(static_cast<HMODULE>(module)); }

  private:
    using Listeners = std::map<Handle, std::unique_ptr<Notified>>;

    [[nodiscard]] Listeners::node_type taken(Handle handle) {
        const std::lock_guard lock(mMutex);
        return mListeners.extract(handle);
    }

    std::mutex mMutex;
    Listeners mListeners;
};

} // namespace

WlanApi& WlanApi::system() {
    // Never destroyed: an optimizer may be let go while the process ends.
    static WlanApi& api = *new WindowsWlanApi;
    return api;
}

} // namespace orbelantine
