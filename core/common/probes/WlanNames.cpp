#include "core/common/probes/WlanNames.h"

#include <iterator>

namespace orbelantine {

namespace {

constexpr std::uint32_t kAutoConfiguration = 8;

constexpr const char* kStates[] = {
    "Not ready",
    "Connected",
    "First node in a ad hoc network",
    "Disconnecting",
    "Disconnected",
    "Attempting to associate with a network",
    "Auto configuration is discovering settings for the network",
    "In process of authenticating",
};

constexpr const char* kNotifications[] = {
    "wlan_notification_acm_start",
    "wlan_notification_acm_autoconf_enabled",
    "wlan_notification_acm_autoconf_disabled",
    "wlan_notification_acm_background_scan_enabled",
    "wlan_notification_acm_background_scan_disabled",
    "wlan_notification_acm_bss_type_change",
    "wlan_notification_acm_power_setting_change",
    "wlan_notification_acm_scan_complete",
    "wlan_notification_acm_scan_fail",
    "wlan_notification_acm_connection_start",
    "wlan_notification_acm_connection_complete",
    "wlan_notification_acm_connection_attempt_fail",
    "wlan_notification_acm_filter_list_change",
    "wlan_notification_acm_interface_arrival",
    "wlan_notification_acm_interface_removal",
    "wlan_notification_acm_profile_change",
    "wlan_notification_acm_profile_name_change",
    "wlan_notification_acm_profiles_exhausted",
    "wlan_notification_acm_network_not_available",
    "wlan_notification_acm_network_available",
    "wlan_notification_acm_disconnecting",
    "wlan_notification_acm_disconnected",
    "wlan_notification_acm_adhoc_network_state_change",
    "wlan_notification_acm_profile_unblocked",
    "wlan_notification_acm_screen_power_change",
    "wlan_notification_acm_profile_blocked",
    "wlan_notification_acm_scan_list_refresh",
    "wlan_notification_acm_operational_state_change",
};

} // namespace

const char* wlanStateName(std::int32_t state) {
    const auto index = static_cast<std::uint32_t>(state);
    return index < std::size(kStates) ? kStates[index] : nullptr;
}

const char* wlanNotificationName(std::uint32_t source, std::uint32_t code) {
    if (source != kAutoConfiguration)
        return "'Unknown'";
    return code < std::size(kNotifications) ? kNotifications[code]
                                            : "unknown wlan_notification_acm_*";
}

} // namespace orbelantine
