#pragma once

#include <cstdint>
#include <optional>

namespace orbelantine::phone {

/// The two channels of a HID link.
enum class Channel { Control, Interrupt };

inline constexpr std::uint16_t kControlPsm = 17;
inline constexpr std::uint16_t kInterruptPsm = 19;

[[nodiscard]] constexpr std::optional<Channel> channelOfPsm(std::uint16_t psm) {
    if (psm == kControlPsm)
        return Channel::Control;
    if (psm == kInterruptPsm)
        return Channel::Interrupt;
    return std::nullopt;
}

[[nodiscard]] constexpr const char* nameOf(Channel channel) {
    return channel == Channel::Control ? "control" : "interrupt";
}

} // namespace orbelantine::phone
