#include "input/window/linux/XKeyboard.h"

#include <initializer_list>

namespace orbelantine {

namespace {

constexpr std::uint8_t kHeldBit = 0x80;
constexpr std::uint8_t kToggledBit = 1;
constexpr std::uint32_t kVkShift = 0x10;
constexpr std::uint32_t kVkControl = 0x11;
constexpr std::uint32_t kVkCapital = 0x14;
constexpr std::uint32_t kVkNumpad0 = 0x60;
constexpr std::uint32_t kVkNumpadDecimal = 0x6E;
constexpr std::uint32_t kVkF10 = 0x79;
constexpr std::uint32_t kVkNumLock = 0x90;
constexpr std::uint32_t kVkLShift = 0xA0;
constexpr std::uint8_t kScanBits = 0x7F;
constexpr std::uint8_t kScanExtended = 0x80;
constexpr std::uint8_t kScanRightShift = 0x36;

// Of a key message's lParam.
constexpr std::uint32_t kRepeatOnce = 1;
constexpr std::uint32_t kAltIsHeld = 1U << 29;
constexpr std::uint32_t kWasHeld = 1U << 30;
constexpr std::uint32_t kGoesUp = 1U << 31;

constexpr std::uint16_t kNumLockMask = XCB_MOD_MASK_2;
constexpr std::uint16_t kAltMask = XCB_MOD_MASK_1;
constexpr std::uint16_t kAltGrMask = XCB_MOD_MASK_5;
constexpr unsigned kModifierBits = 0xFF;

std::uint32_t xGroupOf(std::uint16_t state) {
    return (state >> 13) & 3U;
}

bool isDeadSign(xkb_keysym_t symbol) {
    return symbol >= XKB_KEY_dead_grave && symbol <= XKB_KEY_dead_greek;
}

bool isNumpadKey(std::uint32_t vk) {
    return vk >= kVkNumpad0 && vk <= kVkNumpadDecimal;
}

/// The modifiers of X for what a KeyboardState tells.
std::uint16_t xModifiersOf(const WindowApi::KeyboardState& state, std::uint32_t vk) {
    const auto held = [&](std::uint32_t key) { return (state[key] & kHeldBit) != 0; };
    unsigned modifiers = isNumpadKey(vk) ? kNumLockMask : 0U;
    if (held(kVkShift))
        modifiers |= XCB_MOD_MASK_SHIFT;
    if ((state[kVkCapital] & kToggledBit) != 0)
        modifiers |= XCB_MOD_MASK_LOCK;
    if (held(kVkControl) && held(vk::kMenu))
        modifiers |= kAltGrMask;
    else if (held(kVkControl))
        modifiers |= XCB_MOD_MASK_CONTROL;
    return static_cast<std::uint16_t>(modifiers);
}

std::int32_t putUtf16(char32_t sign, WindowApi::Text& text) {
    if (sign == 0 || sign == 0x7F)
        return 0;
    if (sign < 0x10000) {
        text[0] = static_cast<char16_t>(sign);
        return 1;
    }
    text[0] = static_cast<char16_t>(0xD7C0 + (sign >> 10));
    text[1] = static_cast<char16_t>(0xDC00 + (sign & 0x3FF));
    return 2;
}

} // namespace

XKeyboard::XKeyboard(const XConnection& connection)
    : mConnection(connection)
    , mLibrary(connection.library())
    , mContext(mLibrary.xkb_context_new(XKB_CONTEXT_NO_ENVIRONMENT_NAMES)) {
    mLibrary.xkb_x11_setup_xkb_extension(
        connection.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
        XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &mFirstEvent, nullptr);
    // Else a held key would go up before each repeat.
    static_cast<void>(connection.answer(
        mLibrary.xcb_xkb_per_client_flags_reply,
        mLibrary.xcb_xkb_per_client_flags(connection.get(), XCB_XKB_ID_USE_CORE_KBD,
                                          XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
                                          XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0,
                                          0)));
    constexpr std::uint16_t kLayoutEvents =
        XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t kAllMapParts = 0xFF;
    mLibrary.xcb_xkb_select_events(connection.get(), XCB_XKB_ID_USE_CORE_KBD, kLayoutEvents, 0,
                                   kLayoutEvents, kAllMapParts, kAllMapParts, nullptr);
}

XKeyboard::~XKeyboard() {
    mLibrary.xkb_state_unref(mState);
    mLibrary.xkb_keymap_unref(mKeymap);
    mLibrary.xkb_context_unref(mContext);
}

bool XKeyboard::isOwn(const xcb_generic_event_t& event) const {
    return mFirstEvent != 0 && (event.response_type & 0x7F) == mFirstEvent;
}

void XKeyboard::forgetKeys() {
    mHeld.reset();
    mKeys = {};
}

void XKeyboard::loadLayout() {
    if (!mStale)
        return;
    mStale = false;
    const std::int32_t device = mLibrary.xkb_x11_get_core_keyboard_device_id(mConnection.get());
    xkb_keymap* const keymap = mLibrary.xkb_x11_keymap_new_from_device(
        mContext, mConnection.get(), device, XKB_KEYMAP_COMPILE_NO_FLAGS);
    if (keymap == nullptr)
        return;
    mLibrary.xkb_state_unref(mState);
    mLibrary.xkb_keymap_unref(mKeymap);
    mKeymap = keymap;
    mState = mLibrary.xkb_state_new(keymap);
}

xkb_keysym_t XKeyboard::unshifted(const XKey& key) const {
    const xkb_keycode_t code = key.code + kXKeycodeOffset;
    if (mKeymap == nullptr || mLibrary.xkb_keymap_num_layouts_for_key(mKeymap, code) == 0)
        return XKB_KEY_NoSymbol;
    const std::uint32_t group =
        xGroupOf(mModifiers) % mLibrary.xkb_keymap_num_layouts_for_key(mKeymap, code);
    const xkb_keysym_t* symbols = nullptr;
    const int count = mLibrary.xkb_keymap_key_get_syms_by_level(mKeymap, code, group, 0, &symbols);
    return count == 1 ? symbols[0] : XKB_KEY_NoSymbol;
}

std::uint32_t XKeyboard::layoutKeyOf(const XKey& key) const {
    return virtualKeyOf(key, unshifted(key));
}

std::uint32_t XKeyboard::messageKeyOf(const XKey& key, std::uint16_t state) const {
    const bool digits = (state & kNumLockMask) != 0 && (state & XCB_MOD_MASK_SHIFT) == 0;
    const std::uint32_t numpad = digits ? numpadKeyOf(key) : 0;
    return numpad != 0 ? numpad : layoutKeyOf(key);
}

void XKeyboard::setState(std::uint16_t state) {
    mModifiers = state;
    const auto put = [&](std::uint32_t key, bool on, std::uint8_t bit) {
        mKeys[key] = static_cast<std::uint8_t>((mKeys[key] & ~bit) | (on ? bit : 0));
    };
    const bool altGr = (state & kAltGrMask) != 0;
    put(kVkShift, (state & XCB_MOD_MASK_SHIFT) != 0, kHeldBit);
    put(kVkControl, altGr || (state & XCB_MOD_MASK_CONTROL) != 0, kHeldBit);
    put(vk::kMenu, altGr || (state & kAltMask) != 0, kHeldBit);
    put(kVkCapital, (state & XCB_MOD_MASK_LOCK) != 0, kToggledBit);
    put(kVkNumLock, (state & kNumLockMask) != 0, kToggledBit);
}

void XKeyboard::hold(const XKey& key, std::uint32_t vk, bool down) {
    const auto put = [&](std::uint32_t held) {
        mKeys[held] =
            static_cast<std::uint8_t>(down ? mKeys[held] | kHeldBit : mKeys[held] & ~kHeldBit);
    };
    mHeld[key.code] = down;
    put(vk);
    const bool right = (key.scan & kScanExtended) != 0 || key.scan == kScanRightShift;
    if (vk >= kVkShift && vk <= vk::kMenu)
        put(kVkLShift + 2 * (vk - kVkShift) + (right ? 1 : 0));
}

std::optional<WindowMessage> XKeyboard::translate(const xcb_key_press_event_t& event) {
    loadLayout();
    setState(event.state);
    const XKey* const key = findXKey(event.detail);
    if (key == nullptr)
        return std::nullopt;
    const bool down = (event.response_type & 0x7F) == XCB_KEY_PRESS;
    const std::uint32_t vk = messageKeyOf(*key, event.state);
    const bool control = (event.state & (XCB_MOD_MASK_CONTROL | kAltGrMask)) != 0;
    const bool isAlt = vk == vk::kMenu && unshifted(*key) != XKB_KEY_ISO_Level3_Shift;
    const bool alt = (event.state & kAltMask) != 0 || (isAlt && down);
    const bool ofSystem = !control && (alt || isAlt || vk == kVkF10);
    std::uint32_t flags = kRepeatOnce | static_cast<std::uint32_t>(key->scan & kScanBits) << 16;
    flags |= (key->scan & kScanExtended) != 0 ? kExtendedKey << 16 : 0;
    flags |= ofSystem && alt ? kAltIsHeld : 0;
    flags |= !down || mHeld[key->code] ? kWasHeld : 0;
    flags |= down ? 0 : kGoesUp;
    hold(*key, vk, down);
    const std::uint32_t kind = down ? (ofSystem ? wm::kSysKeyDown : wm::kKeyDown)
                                    : (ofSystem ? wm::kSysKeyUp : wm::kKeyUp);
    return WindowMessage{nullptr, kind, vk, static_cast<WindowMessage::Long>(flags)};
}

WindowApi::KeyboardState XKeyboard::keys() const {
    return mKeys;
}

const XKey* XKeyboard::keyOf(std::uint32_t vk, std::uint32_t scanCode) const {
    const auto isVk = [&](const XKey& key) {
        return isNumpadKey(vk) && numpadKeyOf(key) != 0 ? numpadKeyOf(key) == vk
                                                        : layoutKeyOf(key) == vk;
    };
    const XKey* const exact = findXKeyIf([&](const XKey& key) {
        return (key.scan & kScanBits) == (scanCode & kScanBits) && isVk(key);
    });
    return exact != nullptr ? exact : findXKeyIf(isVk);
}

std::uint32_t XKeyboard::mapVirtualKey(std::uint32_t code, std::uint32_t kind) {
    loadLayout();
    if (kind == WindowApi::kVirtualKeyToScanCode) {
        const XKey* const key = keyOf(code, 0);
        return key == nullptr ? 0U : key->scan & kScanBits;
    }
    const XKey* const key = findXKeyIf([&](const XKey& row) { return row.scan == code; });
    return key == nullptr ? 0 : layoutKeyOf(*key);
}

std::int32_t XKeyboard::toUnicode(std::uint32_t vk, std::uint32_t scanCode,
                                  const WindowApi::KeyboardState& state, WindowApi::Text& text) {
    loadLayout();
    const XKey* const key = keyOf(vk, scanCode);
    if (key == nullptr || mState == nullptr)
        return 0;
    mLibrary.xkb_state_update_mask(mState, xModifiersOf(state, vk) & kModifierBits, 0, 0, 0, 0,
                                   xGroupOf(mModifiers));
    const xkb_keycode_t code = key->code + kXKeycodeOffset;
    if (isDeadSign(mLibrary.xkb_state_key_get_one_sym(mState, code)))
        return -1;
    return putUtf16(mLibrary.xkb_state_key_get_utf32(mState, code), text);
}

} // namespace orbelantine
