#pragma once

#include <cstdint>
#include <string>

namespace orbelantine::stack {

struct AdapterSettings {
    /// The last part of its path.
    std::string name = "hci0";
    std::string address = "00:AA:01:02:03:04";
    std::string alias = "Virtual computer";
    std::uint32_t deviceClass = 0x6C010C;
    bool powered = true;
};

/// What the user of a phone does when asked whether to pair.
enum class Decision {
    Agrees,
    Refuses,
    Silent,
};

struct DeviceSettings {
    /// "00:11:22:33:44:55"
    std::string address = {};
    std::string name = {};
    /// Class of Device; a phone's by default.
    std::uint32_t deviceClass = 0x5A020C;
    bool paired = false;
    bool trusted = false;
    bool connected = false;
    /// An inquiry finds it when it is in range and discoverable.
    bool inRange = true;
    bool discoverable = true;
    std::int16_t rssi = -60;
    Decision decision = Decision::Agrees;
    /// The adapter whose device it is.
    std::string adapter = "hci0";
};

/// What the stack asks an agent for.
enum class Asking {
    Confirmation,
    Authorization,
    Service,
    PinCode,
    Passkey,
    DisplayPasskey,
    DisplayPinCode,
};

} // namespace orbelantine::stack
