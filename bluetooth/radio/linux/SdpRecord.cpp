#include "bluetooth/radio/linux/SdpRecord.h"

#include "bluetooth/dbus/linux/RecordXml.h"
#include "bluetooth/radio/linux/SdpElements.h"

#include <cstddef>
#include <string_view>

namespace orbelantine::bluez {

namespace {

namespace xml = dbus::xml;

using XmlText = std::optional<std::string>;

constexpr std::uint64_t kServiceClasses = 0x0001;
constexpr const char* kBehindShortUuid = "-0000-1000-8000-00805f9b34fb";

std::string_view lettersOf(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

int digitsOf(std::span<const std::uint8_t> bytes) {
    return static_cast<int>(2 * bytes.size());
}

/// "uint" to "uint16" and so on.
std::string sized(std::string_view type, std::size_t bytes) {
    return std::string(type) + std::to_string(8 * bytes);
}

std::string unsignedXml(std::span<const std::uint8_t> value) {
    // Of 16 bytes BlueZ wants the digits alone.
    const std::string prefix = value.size() > sizeof(std::uint64_t) ? "" : "0x";
    return xml::element(sized("uint", value.size()), prefix + xml::hex(value));
}

std::string signedXml(std::span<const std::uint8_t> value) {
    const std::string type = sized("int", value.size());
    if (value.size() > sizeof(std::uint64_t))
        return xml::element(type, xml::hex(value));
    const auto unused = static_cast<int>(8 * (sizeof(std::uint64_t) - value.size()));
    const auto number = static_cast<std::int64_t>(bigEndian(value) << unused) >> unused;
    return xml::element(type, std::to_string(number));
}

std::string grouped(std::string digits) {
    for (const std::size_t place : {20, 16, 12, 8})
        digits.insert(place, "-");
    return digits;
}

/// A short one stands for the upper four bytes of the base UUID.
std::string fullUuid(std::span<const std::uint8_t> value) {
    if (value.size() > sizeof(std::uint32_t))
        return grouped(xml::hex(value));
    return xml::hex(bigEndian(value), 8) + kBehindShortUuid;
}

std::string uuidXml(std::span<const std::uint8_t> value) {
    return xml::element("uuid", value.size() > sizeof(std::uint32_t)
                                    ? fullUuid(value)
                                    : "0x" + xml::hex(bigEndian(value), digitsOf(value)));
}

XmlText urlXml(std::span<const std::uint8_t> value) {
    const std::string_view url = lettersOf(value);
    return xml::isPrintable(url) ? XmlText(xml::url(url)) : std::nullopt;
}

XmlText elementXml(const SdpElement& element, int depth);

XmlText listXml(const char* type, std::span<const std::uint8_t> value, int depth) {
    if (depth > kDeepestSdpElement)
        return {};
    std::string items;
    SdpElements elements(value);
    while (!elements.atEnd()) {
        const auto element = elements.next();
        const XmlText item = element ? elementXml(*element, depth) : std::nullopt;
        if (!item)
            return {};
        items += *item;
    }
    return xml::list(type, items);
}

/// `depth`: of what it lies in.
XmlText elementXml(const SdpElement& element, int depth) {
    switch (element.type) {
    case SdpType::Nil:
        return "<nil/>";
    case SdpType::Unsigned:
        return unsignedXml(element.value);
    case SdpType::Signed:
        return signedXml(element.value);
    case SdpType::Uuid:
        return uuidXml(element.value);
    case SdpType::Text:
        return xml::text(lettersOf(element.value));
    case SdpType::Boolean:
        return xml::boolean(element.value.front() != 0);
    case SdpType::Sequence:
        return listXml("sequence", element.value, depth + 1);
    case SdpType::Alternate:
        return listXml("alternate", element.value, depth + 1);
    case SdpType::Url:
        return urlXml(element.value);
    }
    return {};
}

/// Empty if the value doesn't begin with a UUID.
std::string firstUuid(const SdpElement& classes) {
    if (classes.type != SdpType::Sequence)
        return "";
    const auto first = SdpElements(classes.value).next();
    return first && first->type == SdpType::Uuid ? fullUuid(first->value) : "";
}

/// The attributes' XML; false where it isn't what it should be.
bool readAttribute(SdpElements& elements, std::string& attributes, std::string& uuid) {
    const auto id = elements.next();
    const auto value = elements.next();
    if (!id || !value || id->type != SdpType::Unsigned || id->value.size() != sizeof(std::uint16_t))
        return false;
    const XmlText text = elementXml(*value, 1);
    if (!text)
        return false;
    const std::uint64_t number = bigEndian(id->value);
    if (number == kServiceClasses)
        uuid = firstUuid(*value);
    attributes += xml::attribute(static_cast<std::uint16_t>(number), *text);
    return true;
}

} // namespace

std::optional<SdpRecord> parseSdpRecord(std::span<const std::uint8_t> bytes) {
    SdpElements whole(bytes);
    const auto record = whole.next();
    if (!record || record->type != SdpType::Sequence || !whole.atEnd())
        return {};
    std::string attributes;
    std::string uuid;
    SdpElements elements(record->value);
    while (!elements.atEnd())
        if (!readAttribute(elements, attributes, uuid))
            return {};
    if (uuid.empty())
        return {};
    return SdpRecord{xml::record(attributes), uuid};
}

} // namespace orbelantine::bluez
