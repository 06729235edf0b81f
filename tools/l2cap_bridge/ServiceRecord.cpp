#include "tools/l2cap_bridge/ServiceRecord.h"

#include "bluetooth/DriverProtocol.h"
#include "bluetooth/dbus/linux/RecordXml.h"
#include "hid/link/HIDServiceRecord.h"

#include <cstdint>
#include <initializer_list>
#include <span>

namespace orbelantine::bridge {

namespace {

namespace xml = dbus::xml;

// UUIDs and types of the Bluetooth assigned numbers.
constexpr std::uint64_t kL2cap = 0x0100;
constexpr std::uint64_t kHidp = 0x0011;
constexpr std::uint64_t kHidService = 0x1124;
constexpr std::uint64_t kPublicBrowseGroup = 0x1002;
constexpr std::uint64_t kReportDescriptor = 0x22;

std::string uuid(std::uint64_t value) {
    return xml::element("uuid", "0x" + xml::hex(value, 4));
}

std::string uint8(std::uint64_t value) {
    return xml::element("uint8", "0x" + xml::hex(value, 2));
}

std::string uint16(std::uint64_t value) {
    return xml::element("uint16", "0x" + xml::hex(value, 4));
}

std::string sequence(std::initializer_list<std::string> items) {
    std::string inner;
    for (const std::string& item : items)
        inner += item;
    return xml::list("sequence", inner);
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
        {0x0100, xml::text(record.serviceName)},
        {0x0101, xml::text(record.serviceDescription)},
        {0x0102, xml::text(record.providerName)},
        // Parser version, subclass, country code: none.
        {0x0201, uint16(0x0111)},
        {0x0202, uint8(record.subclass)},
        {0x0203, uint8(0)},
        // Virtual cable; the device is the one that connects.
        {0x0204, xml::boolean(true)},
        {0x0205, xml::boolean(true)},
        {0x0206, sequence({sequence({uint8(kReportDescriptor), xml::bytes(descriptor)})})},
        // The language of the base above, US English.
        {0x0207, sequence({sequence({uint16(0x0409), uint16(0x0100)})})},
        // Supervision timeout in slots of 0.625 ms: 2 s.
        {0x020C, uint16(0x0C80)},
        // Neither connectable at any time nor a boot device.
        {0x020D, xml::boolean(false)},
        {0x020E, xml::boolean(false)},
    };
    std::string inner;
    for (const Attribute& attribute : attributes)
        inner += xml::attribute(attribute.id, attribute.value);
    return xml::record(inner);
}

} // namespace orbelantine::bridge
