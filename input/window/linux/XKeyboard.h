#pragma once

#include "input/window/WindowApi.h"
#include "input/window/linux/XConnection.h"
#include "input/window/linux/XKeyTables.h"

#include <bitset>
#include <memory>

namespace orbelantine {

/// The keys of a connection's core keyboard, by the layout in use. Under its owner's lock.
class XKeyboard {
  public:
    explicit XKeyboard(const XConnection& connection);
    ~XKeyboard();
    XKeyboard(const XKeyboard&) = delete;
    XKeyboard& operator=(const XKeyboard&) = delete;

    /// Of the events that tell of another layout.
    [[nodiscard]] bool isOwn(const xcb_generic_event_t& event) const;

    void forgetLayout() { mStale = true; }

    /// No key is held as far as anyone here may know.
    void forgetKeys();

    /// The message of a press or release, without its window; none for an unknown key.
    [[nodiscard]] std::optional<WindowMessage> translate(const xcb_key_press_event_t& event);
    /// The modifiers and the group that an event came with.
    void setState(std::uint16_t state);

    [[nodiscard]] WindowApi::KeyboardState keys() const;
    [[nodiscard]] std::uint32_t mapVirtualKey(std::uint32_t code, std::uint32_t kind);
    [[nodiscard]] std::int32_t toUnicode(std::uint32_t vk, std::uint32_t scanCode,
                                         const WindowApi::KeyboardState& state,
                                         WindowApi::Text& text);

  private:
    void loadLayout();
    [[nodiscard]] xkb_keysym_t unshifted(const XKey& key) const;
    [[nodiscard]] std::uint32_t layoutKeyOf(const XKey& key) const;
    [[nodiscard]] std::uint32_t messageKeyOf(const XKey& key, std::uint16_t state) const;
    [[nodiscard]] const XKey* keyOf(std::uint32_t vk, std::uint32_t scanCode) const;
    void hold(const XKey& key, std::uint32_t vk, bool down);

    const XConnection& mConnection;
    const XLibrary& mLibrary;
    xkb_context* mContext;
    xkb_keymap* mKeymap = nullptr;
    xkb_state* mState = nullptr;
    std::uint8_t mFirstEvent = 0;
    bool mStale = true;
    std::uint16_t mModifiers = 0;
    std::bitset<256> mHeld;
    WindowApi::KeyboardState mKeys{};
};

} // namespace orbelantine
