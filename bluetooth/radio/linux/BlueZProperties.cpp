#include "bluetooth/radio/linux/BlueZProperties.h"

#include <boost/nowide/convert.hpp>
#include <sdbus-c++/sdbus-c++.h>

#include <algorithm>
#include <cstddef>

namespace orbelantine::bluez {

namespace {

constexpr std::size_t kLongestName = 248;

template <class Value>
std::optional<Value> valueOf(const Properties& properties, const char* name) {
    const auto found = properties.find(name);
    if (found == properties.end())
        return std::nullopt;
    try {
        if (found->second.containsValueOfType<Value>())
            return found->second.get<Value>();
    } catch (const sdbus::Error&) {
        // An empty variant, or one that breaks off.
    }
    return std::nullopt;
}

std::optional<CMacAddress> addressOf(const Properties& properties) {
    const auto text = valueOf<std::string>(properties, "Address");
    return text ? parseAddress(*text) : std::nullopt;
}

std::optional<std::wstring> nameOf(const Properties& properties, const char* name) {
    const auto text = valueOf<std::string>(properties, name);
    return text ? std::optional(parseName(*text)) : std::nullopt;
}

bool isHexadecimal(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

} // namespace

DeviceProperties parseDevice(const Properties& properties) {
    return {addressOf(properties),
            nameOf(properties, "Name"),
            nameOf(properties, "Alias"),
            valueOf<std::uint32_t>(properties, "Class"),
            valueOf<bool>(properties, "Paired"),
            valueOf<bool>(properties, "Trusted"),
            valueOf<bool>(properties, "Connected"),
            valueOf<std::int16_t>(properties, "RSSI").has_value()};
}

AdapterProperties parseAdapter(const Properties& properties) {
    return {addressOf(properties), nameOf(properties, "Alias"),
            valueOf<bool>(properties, "Powered"), valueOf<bool>(properties, "Discoverable")};
}

std::optional<CMacAddress> parseAddress(const std::string& text) {
    constexpr std::size_t kLength = 17;
    if (text.size() != kLength)
        return std::nullopt;
    for (std::size_t i = 0; i < kLength; ++i)
        if (i % 3 == 2 ? text[i] != ':' : !isHexadecimal(text[i]))
            return std::nullopt;
    return CMacAddress(text);
}

std::wstring parseName(const std::string& text) {
    std::wstring name = boost::nowide::widen(text);
    name.resize(std::min(name.size(), kLongestName));
    return name;
}

} // namespace orbelantine::bluez
