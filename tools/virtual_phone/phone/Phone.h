#pragma once

#include "tools/virtual_phone/driver/Channel.h"
#include "tools/virtual_phone/log/EventLog.h"
#include "tools/virtual_phone/phone/Cursor.h"
#include "tools/virtual_phone/phone/ReportDecoder.h"
#include "tools/virtual_phone/phone/Tally.h"
#include "tools/virtual_phone/phone/TextField.h"
#include "tools/virtual_phone/phone/Trace.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace orbelantine::phone {

/// The phone behind the link: takes what arrives on its two channels, keeps what its owner would
/// see, and logs each thing. Used on one thread.
class Phone {
  public:
    enum class Outcome {
        Taken,
        /// The host asked the phone to forget it.
        Unplug,
    };

    /// `log` and `clock` outlive the phone.
    Phone(const Screen& screen, EventLog& log, Acceleration acceleration = Acceleration::None,
          IClock& clock = IClock::system());

    void connected(Channel channel);
    /// Without the interrupt channel nothing is held any longer.
    void disconnected(Channel channel);
    /// One payload of a channel; any bytes at all.
    Outcome receive(Channel channel, std::span<const std::uint8_t> bytes);
    /// Counts and logs what should not have come. `where` names the channel or is empty.
    void error(std::string_view what, std::string_view where = {},
               std::span<const std::uint8_t> bytes = {});

    /// The cursor stays where it is, if that is on the screen; what is drawn begins anew.
    void setScreen(const Screen& screen);
    void setAcceleration(Acceleration acceleration);
    /// The place that a coming click is meant for.
    void setTarget(Point target);

    [[nodiscard]] const Screen& screen() const { return mCursor.screen(); }

    [[nodiscard]] Point cursor() const { return mCursor.position(); }

    [[nodiscard]] const TextField& textField() const { return mTextField; }

    [[nodiscard]] const Tally& tally() const { return mTally; }

    [[nodiscard]] const Trace& trace() const { return mTrace; }

    /// The log's last line.
    [[nodiscard]] JsonObject summary() const;

  private:
    struct AbsolutePosition {
        std::uint16_t x;
        std::uint16_t y;

        bool operator==(const AbsolutePosition&) const = default;
    };

    Outcome receiveControl(std::span<const std::uint8_t> bytes);
    void receiveReport(std::span<const std::uint8_t> bytes);
    void take(const MouseReport& report);
    void take(const KeyboardReport& report);
    void take(const AbsoluteMouseReport& report);
    void take(const DigitizerReport& report);
    void take(const ConsumerReport& report);
    void take(const SystemReport& report);

    void moveBy(int dx, int dy);
    void moveTo(AbsolutePosition position);
    void scroll(int amount);
    void press(std::uint8_t buttons);
    void touch(bool tip);
    void logButtonChanges(std::uint8_t before);
    [[nodiscard]] JsonObject pointerEvent(const char* name) const;

    EventLog& mLog;
    Cursor mCursor;
    TextField mTextField;
    Trace mTrace;
    Tally mTally;
    std::uint8_t mButtons = 0;
    KeyboardReport mKeyboard;
    std::optional<AbsolutePosition> mAbsolute;
};

} // namespace orbelantine::phone
