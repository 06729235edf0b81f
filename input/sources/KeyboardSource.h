#pragma once

#include "core/common/run/IoThread.h"

#include <boost/smart_ptr/atomic_shared_ptr.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <map>

namespace orbelantine {

class IInputContext;
class IMediaElement;
class KVStore;
struct InputFormat;

/// Turns the key events of a surface into keyboard buffers for a target. It knows which keys are
/// held, so that auto-repeats are dropped and all can be released at once; for Android 7 and later
/// it makes Ctrl + Space a Win + Space, which switches the language there.
///
/// Any thread may call. Events are handled in order by the worker "KeyboardSource", which owns what
/// is known of the keys and delivers the buffers.
class KeyboardSource {
  public:
    /// Reads the surface, "apple" and "osVersion", such as "8.1.0". Where Android's version begins
    /// with no number, throws std::invalid_argument; std::out_of_range where it is no int.
    KeyboardSource(const KVStore& settings, const InputFormat& format);
    /// Events that still wait are dropped. Not from the worker.
    virtual ~KeyboardSource();
    KeyboardSource(const KeyboardSource&) = delete;
    KeyboardSource& operator=(const KeyboardSource&) = delete;

    /// From the next buffer on; without a target, buffers are dropped.
    virtual void registerTarget(const boost::shared_ptr<IMediaElement>& target);

    /// A repeat count below 1 marks the key as held and sends nothing.
    void keyDown(std::uint32_t vk, std::uint32_t scanCode, std::int32_t repeatCount);
    void keyUp(std::uint32_t vk, std::uint32_t scanCode);
    /// A key's own up that follows sends nothing.
    void releaseAllKeys();
    /// Lets go of `mark` behind the events so far.
    void follow(const boost::shared_ptr<void>& mark);

  private:
    [[nodiscard]] bool handleUnicode(std::uint32_t vk, bool down);
    void keyDownInternal(std::uint32_t vk, std::uint32_t scanCode, std::int32_t repeatCount);
    void keyUpInternal(std::uint32_t vk, std::uint32_t scanCode);
    void releaseAllKeysInternal();
    void substituteWinForCtrl();
    void releaseWin();
    [[nodiscard]] bool isPressed(std::uint32_t scanCode) const;
    void press(std::uint32_t vk, std::uint32_t scanCode);
    void sendKey(bool down, std::uint32_t scanCode, std::uint32_t vk);
    void send(std::uint8_t ch, bool down, std::uint32_t extra, bool convert);

    boost::shared_ptr<InputFormat> mFormat;
    boost::shared_ptr<IInputContext> mInputContext;
    // Also set by other threads, while the worker sends.
    boost::atomic_shared_ptr<IMediaElement> mTarget;
    // By scan code: the virtual key in the upper 16 bits, the scan code in the lowest 8.
    std::map<std::int32_t, std::uint32_t> mPressed;
    bool mCtrlSpaceFix = false;
    bool mWinSubstituted = false;
    // Set by the destructor: a run of repeats may be long.
    std::atomic<bool> mEnding = false;
    IoThread mWorker{"KeyboardSource"};
};

} // namespace orbelantine
