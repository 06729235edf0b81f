#pragma once

#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IMediaElement.h"
#include "hid/reports/IInputMediaBufferHID.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <array>
#include <cstdint>

namespace orbelantine {

class IHIDKeyTranslator;
class KVStore;

/// An element that packs mouse and key events into the reports of the published descriptor and
/// hands them on, each wrapped in an IInputMediaBufferHID. No lock: one thread at a time.
class HIDEventsPacker : public IMediaElement {
  public:
    /// Names the packer for whoever made it; carried only.
    struct Identity {
        std::uint64_t high;
        std::uint64_t low;
    };

    /// Without `includeBtCode` the reports lack the leading transaction byte.
    explicit HIDEventsPacker(const KVStore& configuration, bool includeBtCode = true,
                             const Identity& identity = Identity());

    using IMediaElement::start;
    void start() override;
    /// Forgets what is held down and the target.
    void stop() override;
    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override;
    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override;

  private:
    using KeyEvent = IInputMediaBufferKeyboard::EventData;
    using MouseEvent = IInputMediaBufferMouse::EventData;

    /// What a mouse event moves, a signed byte each.
    struct Axes {
        std::int8_t x = 0;
        std::int8_t y = 0;
        std::int8_t wheel = 0;
    };

    void reset();
    void onKeyboard(IMediaBuffer& buffer);
    void onMouse(IMediaBuffer& buffer);
    [[nodiscard]] bool parseKeyboardEvent(const KeyEvent& event);
    [[nodiscard]] bool parseMouseEvent(const MouseEvent& event, Axes& axes);
    void send(const std::uint8_t* report, std::size_t size, IInputMediaBufferHID::Kind kind,
              std::uint64_t sourceTimestamp);

    boost::shared_ptr<IMediaElement> mTarget;
    boost::shared_ptr<IHIDKeyTranslator> mTranslator;
    [[maybe_unused]] Identity mIdentity;
    std::uint8_t mMouseButtons = 0;
    std::uint8_t mModifiers = 0;
    std::array<std::uint8_t, 8> mKeys{};
    bool mIncludeBtCode;
};

} // namespace orbelantine
