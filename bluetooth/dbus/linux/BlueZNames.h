#pragma once

/// BlueZ's names on D-Bus, and those of D-Bus itself.
namespace orbelantine::dbus {

inline constexpr const char* kDBus = "org.freedesktop.DBus";
inline constexpr const char* kDBusPath = "/org/freedesktop/DBus";
inline constexpr const char* kObjectManager = "org.freedesktop.DBus.ObjectManager";
inline constexpr const char* kProperties = "org.freedesktop.DBus.Properties";

inline constexpr const char* kBlueZ = "org.bluez";
inline constexpr const char* kBlueZRoot = "/";
inline constexpr const char* kBlueZPath = "/org/bluez";
inline constexpr const char* kAdapter = "org.bluez.Adapter1";
inline constexpr const char* kDevice = "org.bluez.Device1";
inline constexpr const char* kAgent = "org.bluez.Agent1";
inline constexpr const char* kAgentManager = "org.bluez.AgentManager1";
inline constexpr const char* kProfile = "org.bluez.Profile1";
inline constexpr const char* kProfileManager = "org.bluez.ProfileManager1";

/// What whoever BlueZ calls answers it with.
inline constexpr const char* kRejected = "org.bluez.Error.Rejected";
inline constexpr const char* kCanceled = "org.bluez.Error.Canceled";

} // namespace orbelantine::dbus
