#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orbelantine {

/// The system calls by which NetworkOptimizer reaches the computer's wireless adapters. Errors are
/// the system's, 0 for success.
class WlanApi {
  public:
    using Error = std::uint32_t;
    using Handle = void*;
    using Module = void*;
    using Procedure = void (*)();
    using Guid = std::array<std::uint8_t, 16>;
    /// Told of a notification's source and code, on a thread of the system's.
    using Notified = std::function<void(std::uint32_t source, std::uint32_t code)>;

    struct Interface {
        Guid guid{};
        std::wstring description;
        std::int32_t state = 0;
    };

    /// WLAN_INTERFACE_INFO_LIST
    struct Interfaces {
        std::uint32_t index = 0;
        std::vector<Interface> list;
    };

    enum class Operation : std::uint32_t { BackgroundScan = 2, MediaStreaming = 3 };

    virtual ~WlanApi() = default;

    /// WlanOpenHandle, client version 2.
    [[nodiscard]] virtual Error open(Handle& handle) = 0;
    virtual void close(Handle handle) = 0;
    /// WlanRegisterNotification of all sources, duplicates left out. `notified` is kept.
    virtual Error listen(Handle handle, Notified notified) = 0;
    /// The same of none. Once it has returned, what listen was given isn't called any more.
    virtual void unlisten(Handle handle) = 0;
    /// WlanEnumInterfaces, with what it allocates freed.
    [[nodiscard]] virtual Error enumerate(Handle handle, Interfaces& interfaces) = 0;
    /// WlanSetInterface
    [[nodiscard]] virtual Error set(Handle handle, const Guid& guid, Operation operation,
                                    bool value) = 0;
    /// StringFromGUID2; empty on failure.
    [[nodiscard]] virtual std::wstring textOf(const Guid& guid) = 0;
    /// LoadLibraryW; null on failure.
    [[nodiscard]] virtual Module load(const wchar_t* name) = 0;
    [[nodiscard]] virtual Procedure procedure(Module module, const char* name) = 0;
    virtual void unload(Module module) = 0;

    /// The process's real system; lives until the process ends. Only where the system has WLAN
    /// services of this kind.
    static WlanApi& system();
};

} // namespace orbelantine
