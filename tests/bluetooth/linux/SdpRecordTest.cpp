#include "bluetooth/radio/linux/SdpRecord.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace orbelantine::bluez {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes whole;
    for (const Bytes& part : parts)
        whole.insert(whole.end(), part.begin(), part.end());
    return whole;
}

/// With its size in two bytes.
Bytes listOf(std::uint8_t type, const Bytes& items) {
    const std::size_t size = items.size();
    return joined(
        {{type, static_cast<std::uint8_t>(size >> 8), static_cast<std::uint8_t>(size)}, items});
}

const Bytes kClassId = {0x09, 0x00, 0x01};
const Bytes kClasses = {0x35, 0x03, 0x19, 0x11, 0x24};

/// A record with a service class and one more attribute.
Bytes recordWith(const Bytes& element) {
    return listOf(0x36, joined({kClassId, kClasses, {0x09, 0x02, 0x06}, element}));
}

std::string xmlOf(const Bytes& element) {
    const auto record = parseSdpRecord(recordWith(element));
    if (!record)
        return "refused";
    const std::string begin = "<attribute id=\"0x0206\">";
    const std::size_t place = record->xml.find(begin) + begin.size();
    return record->xml.substr(place, record->xml.find("</attribute>", place) - place);
}

std::string uuidOf(const Bytes& classes) {
    const auto record = parseSdpRecord(listOf(0x36, joined({kClassId, classes})));
    return record ? record->uuid : "refused";
}

Bytes nested(int depth) {
    Bytes element;
    for (; depth > 0; --depth)
        element = listOf(0x36, element);
    return element;
}

} // namespace

TEST(SdpRecord, EachKindOfElementIsAsBlueZTakesIt) {
    const Bytes sixteen = {0xF0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    const std::pair<Bytes, std::string> cases[] = {
        {{0x00}, "<nil/>"},
        {{0x08, 0xFE}, R"(<uint8 value="0xfe"/>)"},
        {{0x0B, 1, 2, 3, 4, 5, 6, 7, 8}, R"(<uint64 value="0x0102030405060708"/>)"},
        {joined({{0x0C}, sixteen}), R"(<uint128 value="f00102030405060708090a0b0c0d0e0f"/>)"},
        {{0x10, 0xFF}, R"(<int8 value="-1"/>)"},
        {{0x12, 0x80, 0, 0, 0}, R"(<int32 value="-2147483648"/>)"},
        {{0x13, 0x7F, 0, 0, 0, 0, 0, 0, 1}, R"(<int64 value="9151314442816847873"/>)"},
        {joined({{0x14}, sixteen}), R"(<int128 value="f00102030405060708090a0b0c0d0e0f"/>)"},
        {{0x19, 0x00, 0x11}, R"(<uuid value="0x0011"/>)"},
        {{0x1A, 0, 1, 0, 0x11}, R"(<uuid value="0x00010011"/>)"},
        {joined({{0x1C}, sixteen}), R"(<uuid value="f0010203-0405-0607-0809-0a0b0c0d0e0f"/>)"},
        {{0x25, 3, 'a', '"', '<'}, R"(<text value="a&quot;&lt;"/>)"},
        {{0x26, 0, 2, 'a', 0}, R"(<text encoding="hex" value="6100"/>)"},
        {{0x27, 0, 0, 0, 1, 0xC3}, R"(<text encoding="hex" value="c3"/>)"},
        {{0x28, 1}, R"(<boolean value="true"/>)"},
        {{0x28, 0}, R"(<boolean value="false"/>)"},
        {{0x35, 4, 0x3D, 2, 0x08, 7},
         R"(<sequence><alternate><uint8 value="0x07"/></alternate></sequence>)"},
        {{0x45, 3, 'a', ':', '&'}, R"(<url value="a:&amp;"/>)"},
    };
    for (const auto& [element, expected] : cases)
        EXPECT_EQ(xmlOf(element), expected);
}

TEST(SdpRecord, FirstServiceClassIsGivenInFull) {
    EXPECT_EQ(uuidOf(kClasses), "00001124-0000-1000-8000-00805f9b34fb");
    EXPECT_EQ(uuidOf({0x35, 8, 0x1A, 0, 1, 0x11, 0x24, 0x19, 0, 1}),
              "00011124-0000-1000-8000-00805f9b34fb");
    EXPECT_EQ(uuidOf(joined({{0x35, 17, 0x1C}, Bytes(16, 0xAB)})),
              "abababab-abab-abab-abab-abababababab");
    EXPECT_EQ(uuidOf({0x35, 0}), "refused");
    EXPECT_EQ(uuidOf({0x19, 0x11, 0x24}), "refused");
    EXPECT_EQ(uuidOf({0x35, 2, 0x08, 1}), "refused");
}

TEST(SdpRecord, WhatIsNotOneWholeRecordIsRefused) {
    const Bytes whole = recordWith({0x08, 1});
    EXPECT_TRUE(parseSdpRecord(whole));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(parseSdpRecord(std::span(whole).first(size))) << size;
    EXPECT_FALSE(parseSdpRecord(joined({whole, {0}})));
    EXPECT_FALSE(parseSdpRecord(listOf(0x3E, joined({kClassId, kClasses})))) << "an alternate";
    EXPECT_FALSE(parseSdpRecord(listOf(0x36, joined({kClassId, kClasses, {0x09, 0, 4}}))));
    EXPECT_FALSE(parseSdpRecord(listOf(0x36, joined({kClassId, kClasses, {0x08, 4, 0}}))));
    const Bytes misfits[] = {
        {0x01, 0},       {0x0D, 1, 0}, {0x18, 1},       {0x1B, 1, 2, 3, 4, 5, 6, 7, 8},
        {0x20, 'a'},     {0x29, 0, 1}, {0x30, 0},       {0x48, 0},
        {0x35, 1, 0x09}, {0x25, 2, 1}, {0x45, 1, 0x80},
    };
    for (const Bytes& misfit : misfits)
        EXPECT_EQ(xmlOf(misfit), "refused") << int{misfit.front()};
    EXPECT_NE(xmlOf(nested(31)), "refused") << "32 with the record's own";
    EXPECT_EQ(xmlOf(nested(32)), "refused");
}

} // namespace orbelantine::bluez
