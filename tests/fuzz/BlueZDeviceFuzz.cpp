// Properties of any name and type, as a bus may deliver them, into the table of devices; texts
// that no bus would let pass straight into what reads names and addresses.

#include "bluetooth/radio/linux/BlueZProperties.h"
#include "bluetooth/radio/linux/DeviceTable.h"
#include "tests/fuzz/Input.h"

#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

namespace orbelantine::fuzz {

namespace {

using bluez::Properties;

constexpr const char* kNames[] = {"Address", "Name",      "Alias", "Class",   "Paired",
                                  "Trusted", "Connected", "RSSI",  "Powered", "Discoverable"};
constexpr const char* kInterfaces[] = {"org.bluez.Device1", "org.bluez.Adapter1",
                                       "org.bluez.MediaControl1"};
constexpr const char* kPaths[] = {"/org/bluez/hci0", "/org/bluez/hci0/dev_1",
                                  "/org/bluez/hci0/dev_2", "/org/bluez/hci00/dev_1"};

template <std::size_t N>
const char* pick(Input& input, const char* const (&from)[N]) {
    return from[input.byte() % N];
}

std::string text(Input& input) {
    const auto bytes = input.bytes(input.byte());
    return {bytes.begin(), bytes.end()};
}

/// What a bus lets pass.
std::string printable(std::string text) {
    std::ranges::replace_if(
        text, [](unsigned char c) { return c < ' ' || c > '~'; }, ':');
    return text;
}

sdbus::Variant value(Input& input) {
    switch (input.byte() % 9) {
    case 0:
        return sdbus::Variant(printable(text(input)));
    case 1:
        return sdbus::Variant(input.byte() % 2 == 0);
    case 2:
        return sdbus::Variant(static_cast<std::int16_t>(input.byte()));
    case 3:
        return sdbus::Variant(std::uint32_t{input.byte()} << 8);
    case 4:
        return sdbus::Variant(sdbus::ObjectPath("/a"));
    case 5:
        return sdbus::Variant(std::vector<std::string>(2));
    case 6:
        return sdbus::Variant(sdbus::Variant(true));
    case 7:
        return sdbus::Variant(std::string("AA:BB:CC:00:00:0") +
                              "0123456789abcdefG"[input.byte() % 17]);
    default:
        return {};
    }
}

Properties properties(Input& input) {
    Properties made;
    for (unsigned left = input.byte() % 8; left != 0; --left)
        made[pick(input, kNames)] = value(input);
    return made;
}

bool isText(const sdbus::Variant& variant) {
    return !variant.isEmpty() && variant.containsValueOfType<std::string>();
}

/// What is read is what is there in the right type and form, and nothing else.
void compare(const Properties& given) {
    const auto device = bluez::parseDevice(given);
    const auto has = [&](const char* name, auto example) {
        const auto found = given.find(name);
        return found != given.end() && !found->second.isEmpty() &&
               found->second.containsValueOfType<decltype(example)>();
    };
    ORB_FUZZ_EXPECT(device.name.has_value() == has("Name", std::string()));
    ORB_FUZZ_EXPECT(device.deviceClass.has_value() == has("Class", std::uint32_t()));
    ORB_FUZZ_EXPECT(device.paired.has_value() == has("Paired", bool()));
    ORB_FUZZ_EXPECT(device.heard == has("RSSI", std::int16_t()));
    if (device.address)
        ORB_FUZZ_EXPECT(isText(given.at("Address")) &&
                        CMacAddress(given.at("Address").get<std::string>()) == *device.address);
    const auto adapter = bluez::parseAdapter(given);
    ORB_FUZZ_EXPECT(adapter.powered.has_value() == has("Powered", bool()));
    ORB_FUZZ_EXPECT(adapter.address == device.address);
}

void changeTable(Input& input) {
    bluez::DeviceTable table;
    while (!input.empty()) {
        const std::string path = pick(input, kPaths);
        const std::string interface = pick(input, kInterfaces);
        const unsigned what = input.byte() % 4;
        const Properties given = properties(input);
        compare(given);
        if (what == 0)
            table.remove(path, {interface});
        else if (what == 1)
            table.change(path, interface, given, {pick(input, kNames)});
        else
            table.add(path, {{interface, given}});
        for (const auto& device :
             table.devices("/org/bluez/hci0", [](const bluez::Device&) { return true; })) {
            const std::string found = table.pathOf("/org/bluez/hci0", device.address);
            ORB_FUZZ_EXPECT(table.findDevice(found)->address == device.address);
        }
    }
}

void readText(const std::string& given) {
    const std::wstring name = bluez::parseName(given);
    ORB_FUZZ_EXPECT(name.size() <= std::min<std::size_t>(given.size(), 248));
    for (const wchar_t c : name)
        ORB_FUZZ_EXPECT(c >= 0 && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF));
    if (const auto address = bluez::parseAddress(given)) {
        std::string upper = given;
        std::ranges::transform(upper, upper.begin(), ::toupper);
        const std::wstring text = address->getStdStringAddress();
        ORB_FUZZ_EXPECT(std::equal(text.begin(), text.end(), upper.begin(), upper.end()));
    }
}

} // namespace

} // namespace orbelantine::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orbelantine::fuzz;
    readText(std::string(data, data + size));
    Input input(data, size);
    changeTable(input);
    return 0;
}
