#pragma once

#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "core/common/config/KVStore.h"
#include "hid/reports/HIDMediaReportConverter.h"
#include "hid/reports/HIDReport.h"
#include "hid/reports/HIDReportState.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <vector>

namespace orbelantine::test {

using Bytes = std::vector<std::uint8_t>;

inline KVStore configuration(bool apple) {
    KVStore store;
    store.setBoolAt("apple", apple);
    return store;
}

/// A converter with a device's state; each call gives the bytes of one event's report, or none.
class HidReportFixture : public ::testing::Test {
  protected:
    static constexpr std::uint32_t kAbsolute = 0;
    static constexpr std::uint32_t kDigitizer = 1;
    static constexpr std::uint32_t kRelative = 2;

    Bytes convert(const boost::shared_ptr<IMediaBuffer>& buffer, std::uint32_t mode = kRelative) {
        const bool made = converter->convertToReport(buffer, mode, state, report);
        return made ? Bytes(report.data, report.data + report.size) : Bytes();
    }

    Bytes mouse(std::uint32_t mode, std::uint8_t type, std::int32_t x = 0, std::int32_t y = 0) {
        return convert(boost::make_shared<IInputMediaBufferMouse>(x, y, type, false), mode);
    }

    Bytes keyDown(std::uint8_t scanCode) {
        return key(scanCode, IInputMediaBufferKeyboard::KeyDown);
    }

    Bytes keyUp(std::uint8_t scanCode) { return key(scanCode, IInputMediaBufferKeyboard::KeyUp); }

    Bytes key(std::uint8_t scanCode, std::uint8_t type) {
        return convert(boost::make_shared<IInputMediaBufferKeyboard>(scanCode, type, ~0U, false));
    }

    boost::shared_ptr<HIDMediaReportConverter> converter =
        boost::make_shared<HIDMediaReportConverter>(configuration(false));
    HIDReportState state;
    HIDReport report;
};

} // namespace orbelantine::test
