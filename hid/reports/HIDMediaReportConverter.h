#pragma once

#include "avstack/IInputMediaBufferKeyboard.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>

namespace orbelantine {

class IHIDKeyTranslator;
class KVStore;
struct HIDReport;
struct HIDReportState;

/// Turns input buffers into the reports that go to the phone, without a lock or an allocation.
class HIDMediaReportConverter {
  public:
    /// How mouse events are reported: the device type of the HID device's client.
    enum Mode : std::uint32_t { kAbsolute = 0, kDigitizer = 1, kRelative = 2 };

    /// Takes the product's key translator, as the configuration says.
    explicit HIDMediaReportConverter(const KVStore& configuration);
    explicit HIDMediaReportConverter(const boost::shared_ptr<IHIDKeyTranslator>& translator);
    virtual ~HIDMediaReportConverter() = default;

    /// True when `report` holds one to send. `state` keeps what the event changed either way. Of a
    /// keyboard event without a scan code, `extra` is set to 0.
    [[nodiscard]] virtual bool convertToReport(const boost::shared_ptr<IMediaBuffer>& buffer,
                                               std::uint32_t mode, HIDReportState& state,
                                               HIDReport& report);

  private:
    using KeyEvent = IInputMediaBufferKeyboard::EventData;

    bool convertKeyboard(KeyEvent& event, HIDReportState& state, HIDReport& report);
    bool convertConsumerKey(const KeyEvent& event, HIDReport& report);
    bool convertSystemControlKey(const KeyEvent& event, HIDReport& report);
    bool convertKey(KeyEvent& event, HIDReportState& state, HIDReport& report);

    boost::shared_ptr<IHIDKeyTranslator> mTranslator;
};

} // namespace orbelantine
