#include "tools/l2cap_bridge/ServiceRecord.h"

#include "bluetooth/DriverProtocol.h"
#include "hid/link/HIDServiceRecord.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

namespace orbelantine::bridge {

namespace {

// UUIDs and types of the Bluetooth assigned numbers.
constexpr std::uint64_t kL2cap = 0x0100;
constexpr std::uint64_t kHidp = 0x0011;
constexpr std::uint64_t kHidService = 0x1124;
constexpr std::uint64_t kPublicBrowseGroup = 0x1002;
constexpr std::uint64_t kReportDescriptor = 0x22;

constexpr std::string_view kDigits = "0123456789abcdef";

std::string hex(std::uint64_t value, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += kDigits[(value >> shift) & 0x0F];
    return text;
}

std::string element(std::string_view type, std::string_view value) {
    return "<" + std::string(type) + " value=\"" + std::string(value) + "\"/>";
}

std::string uuid(std::uint64_t value) {
    return element("uuid", "0x" + hex(value, 4));
}

std::string uint8(std::uint64_t value) {
    return element("uint8", "0x" + hex(value, 2));
}

std::string uint16(std::uint64_t value) {
    return element("uint16", "0x" + hex(value, 4));
}

std::string boolean(bool value) {
    return element("boolean", value ? "true" : "false");
}

/// An attribute's value can't hold some characters as they are.
std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        default:
            result += c;
        }
    }
    return result;
}

std::string text(std::string_view value) {
    return element("text", escaped(value));
}

std::string bytes(std::span<const std::uint8_t> value) {
    std::string digits;
    for (const std::uint8_t byte : value)
        digits += hex(byte, 2);
    return "<text encoding=\"hex\" value=\"" + digits + "\"/>";
}

std::string sequence(std::initializer_list<std::string> items) {
    std::string inner;
    for (const std::string& item : items)
        inner += item;
    return "<sequence>" + inner + "</sequence>";
}

std::string protocols(std::uint16_t psm) {
    return sequence({sequence({uuid(kL2cap), uint16(psm)}), sequence({uuid(kHidp)})});
}

struct Attribute {
    std::uint16_t id;
    std::string value;
};

} // namespace

std::string serviceRecordXml(const HIDServiceRecord& record) {
    const std::span<const std::uint8_t> descriptor(record.descriptor.get(), record.descriptorSize);
    const Attribute attributes[] = {
        {0x0001, sequence({uuid(kHidService)})},
        {0x0004, protocols(driver::kControlPsm)},
        {0x0005, sequence({uuid(kPublicBrowseGroup)})},
        // The texts below are English ("en") in UTF-8, from the attribute 0x0100 on.
        {0x0006, sequence({uint16(0x656E), uint16(0x006A), uint16(0x0100)})},
        {0x0009, sequence({sequence({uuid(kHidService), uint16(0x0101)})})},
        {0x000D, sequence({protocols(driver::kInterruptPsm)})},
        {0x0100, text(record.serviceName)},
        {0x0101, text(record.serviceDescription)},
        {0x0102, text(record.providerName)},
        // Parser version, subclass, country code: none.
        {0x0201, uint16(0x0111)},
        {0x0202, uint8(record.subclass)},
        {0x0203, uint8(0)},
        // Virtual cable; the device is the one that connects.
        {0x0204, boolean(true)},
        {0x0205, boolean(true)},
        {0x0206, sequence({sequence({uint8(kReportDescriptor), bytes(descriptor)})})},
        // The language of the base above, US English.
        {0x0207, sequence({sequence({uint16(0x0409), uint16(0x0100)})})},
        // Supervision timeout in slots of 0.625 ms: 2 s.
        {0x020C, uint16(0x0C80)},
        // Neither connectable at any time nor a boot device.
        {0x020D, boolean(false)},
        {0x020E, boolean(false)},
    };
    std::string xml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<record>\n";
    for (const Attribute& attribute : attributes)
        xml += "  <attribute id=\"0x" + hex(attribute.id, 4) + "\">" + attribute.value +
               "</attribute>\n";
    return xml + "</record>\n";
}

} // namespace orbelantine::bridge
