#pragma once

#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputMediaBufferTouch.h"
#include "avstack/IMediaElement.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <ostream>
#include <tuple>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// An input buffer as stored.
struct InputFrame {
    std::uint8_t mediaType = 0;
    /// A key's scan code or a contact's id.
    std::uint8_t ch = 0;
    std::uint8_t event = 0;
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t maxX = 0;
    std::int32_t maxY = 0;
    std::uint32_t extra = 0;
    bool networkOrder = true;
    bool operator==(const InputFrame&) const = default;

    static InputFrame of(IMediaBuffer& buffer) {
        InputFrame frame{.mediaType = buffer.getType()};
        const auto takeCommon = [&](auto& typed) {
            frame.event = typed.event().type;
            frame.networkOrder = typed.networkOrder();
        };
        if (auto* mouse = dynamic_cast<IInputMediaBufferMouse*>(&buffer)) {
            takeCommon(*mouse);
            std::tie(frame.x, frame.y) = std::tie(mouse->event().x, mouse->event().y);
            std::tie(frame.maxX, frame.maxY) = std::tie(mouse->event().maxX, mouse->event().maxY);
        } else if (auto* touch = dynamic_cast<IInputMediaBufferTouch*>(&buffer)) {
            takeCommon(*touch);
            frame.ch = touch->event().id;
            std::tie(frame.x, frame.y) = std::tie(touch->event().x, touch->event().y);
        } else {
            auto& keyboard = dynamic_cast<IInputMediaBufferKeyboard&>(buffer);
            takeCommon(keyboard);
            std::tie(frame.ch, frame.extra) = std::tie(keyboard.event().ch, keyboard.event().extra);
        }
        return frame;
    }
};

/// Of a key that no test uses: the last frame of what was posted before.
inline constexpr InputFrame kMarkerUp{.mediaType = 9, .ch = 250, .event = 1, .extra = 0xFFFFFFFF};

inline void PrintTo(const InputFrame& frame, std::ostream* out) {
    *out << "type " << +frame.mediaType << " ch " << +frame.ch << " event " << +frame.event << " ("
         << frame.x << ", " << frame.y << ") extra " << frame.extra
         << (frame.networkOrder ? "" : " host order");
}

/// Keeps what the last element of a chain gets, from any thread.
class RecordingTarget final : public IMediaElement {
  public:
    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        const InputFrame frame = InputFrame::of(*buffer);
        const std::lock_guard lock(mMutex);
        mFrames.push_back(frame);
        mArrived.notify_all();
    }

    /// The frames since the last call.
    [[nodiscard]] std::vector<InputFrame> take() {
        const std::lock_guard lock(mMutex);
        return std::exchange(mFrames, {});
    }

    /// Waits for a frame of the mouse.
    [[nodiscard]] bool awaitMouse() {
        std::unique_lock lock(mMutex);
        const auto isMouse = [](const InputFrame& frame) {
            return frame.mediaType == eMediaTypeMouse;
        };
        return mArrived.wait_for(lock, kPatience,
                                 [&] { return std::ranges::any_of(mFrames, isMouse); });
    }

    /// Waits for `last`, and takes all frames up to it and with it. Empty if it doesn't come.
    [[nodiscard]] std::vector<InputFrame> takeUpTo(const InputFrame& last) {
        std::unique_lock lock(mMutex);
        const auto end = [&] { return std::find(mFrames.begin(), mFrames.end(), last); };
        if (!mArrived.wait_for(lock, kPatience, [&] { return end() != mFrames.end(); }))
            return {};
        std::vector<InputFrame> frames(mFrames.begin(), end() + 1);
        mFrames.erase(mFrames.begin(), end() + 1);
        return frames;
    }

  private:
    static constexpr std::chrono::seconds kPatience{20};

    std::mutex mMutex;
    std::condition_variable mArrived;
    std::vector<InputFrame> mFrames;
};

} // namespace orbelantine::test
