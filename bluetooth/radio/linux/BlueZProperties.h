#pragma once

#include "core/common/types/CMacAddress.h"

#include <sdbus-c++/Types.h>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace orbelantine::bluez {

using Properties = std::map<std::string, sdbus::Variant>;
using Interfaces = std::map<std::string, Properties>;

/// What a device says of itself. Nothing for what is missing, or has another type or form than
/// BlueZ gives it; nothing throws.
struct DeviceProperties {
    std::optional<CMacAddress> address;
    std::optional<std::wstring> name;
    /// The user's name for it, else its own, else its address in another form.
    std::optional<std::wstring> alias;
    std::optional<std::uint32_t> deviceClass;
    std::optional<bool> paired;
    std::optional<bool> trusted;
    std::optional<bool> connected;
    /// It has been heard.
    bool heard = false;
};

/// The same of an adapter.
struct AdapterProperties {
    std::optional<CMacAddress> address;
    std::optional<std::wstring> alias;
    std::optional<bool> powered;
    std::optional<bool> discoverable;
};

[[nodiscard]] DeviceProperties parseDevice(const Properties& properties);
[[nodiscard]] AdapterProperties parseAdapter(const Properties& properties);

/// "AA:BB:CC:DD:EE:FF" and nothing else.
[[nodiscard]] std::optional<CMacAddress> parseAddress(const std::string& text);
/// From UTF-8, each malformed piece as U+FFFD, and no longer than a name of Bluetooth may be.
[[nodiscard]] std::wstring parseName(const std::string& text);

} // namespace orbelantine::bluez
