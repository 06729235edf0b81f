#include "input/window/linux/XSurfaces.h"

#include <cmath>
#include <utility>

namespace orbelantine {

namespace {

constexpr std::int32_t kWheelNotch = 120;
constexpr std::uint8_t kFirstWheelButton = 4;

// Of a mouse message's wParam.
constexpr struct {
    unsigned xMask;
    WindowMessage::Word flag;
} kMouseFlags[] = {
    {XCB_BUTTON_MASK_1, 1},    {XCB_BUTTON_MASK_3, 2},  {XCB_MOD_MASK_SHIFT, 4},
    {XCB_MOD_MASK_CONTROL, 8}, {XCB_BUTTON_MASK_2, 16},
};

// From X's button 1 on.
constexpr struct {
    std::uint32_t down;
    std::uint32_t up;
    WindowMessage::Word flag;
} kButtons[] = {
    {wm::kLButtonDown, wm::kLButtonUp, 1},
    {wm::kMButtonDown, wm::kMButtonUp, 16},
    {wm::kRButtonDown, wm::kRButtonUp, 2},
};

// From X's button 4 on.
constexpr struct {
    std::uint32_t message;
    std::int32_t turned;
} kWheels[] = {
    {wm::kMouseWheel, kWheelNotch},
    {wm::kMouseWheel, -kWheelNotch},
    {wm::kMouseHWheel, -kWheelNotch},
    {wm::kMouseHWheel, kWheelNotch},
};

template <class Event>
const Event& eventAs(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

WindowApi::Handle xHandleOf(xcb_window_t window) {
    return reinterpret_cast<WindowApi::Handle>(std::uintptr_t{window});
}

WindowMessage::Word mouseFlagsOf(std::uint16_t state) {
    WindowMessage::Word flags = 0;
    for (const auto& row : kMouseFlags)
        flags |= (state & row.xMask) != 0 ? row.flag : 0;
    return flags;
}

double valueOf(const xcb_input_fp3232_t& value) {
    return value.integral + value.frac / 4294967296.0;
}

/// What whole steps `sum` has; it keeps the rest.
std::int32_t takeWhole(double& sum) {
    const double whole = std::trunc(sum);
    sum -= whole;
    return static_cast<std::int32_t>(whole);
}

WindowMessage::Long rawLong(std::int32_t x, std::int32_t y) {
    return static_cast<WindowMessage::Long>(
        static_cast<std::uint64_t>(static_cast<std::uint32_t>(x)) << 32 |
        static_cast<std::uint32_t>(y));
}

} // namespace

void XSurfaces::translate(const xcb_generic_event_t& event, Messages& messages) {
    settleFocus(&event, messages);
    switch (event.response_type & 0x7F) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
        return onKey(eventAs<xcb_key_press_event_t>(event), messages);
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
        return onButton(eventAs<xcb_button_press_event_t>(event), messages);
    case XCB_MOTION_NOTIFY:
        return onMotion(eventAs<xcb_motion_notify_event_t>(event), messages);
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
        return onFocus(eventAs<xcb_focus_in_event_t>(event), messages);
    case XCB_CONFIGURE_NOTIFY:
        return onResize(eventAs<xcb_configure_notify_event_t>(event));
    case XCB_GE_GENERIC:
        return onRawMotion(event, messages);
    default:
        break;
    }
    if (mKeyboard.isOwn(event))
        mKeyboard.forgetLayout();
    if ((event.response_type & 0x7F) != XCB_DESTROY_NOTIFY)
        return;
    const xcb_window_t window = eventAs<xcb_destroy_notify_event_t>(event).window;
    if (has(window))
        messages.push_back({xHandleOf(window), wm::kDestroy, 0, 0});
}

void XSurfaces::onKey(const xcb_key_press_event_t& event, Messages& messages) {
    const auto surface = find(event.event);
    if (surface == mSurfaces.end())
        return;
    if (auto message = mKeyboard.translate(event)) {
        message->window = xHandleOf(surface->first);
        messages.push_back(*message);
    }
}

void XSurfaces::onButton(const xcb_button_press_event_t& event, Messages& messages) {
    const auto surface = find(event.event);
    const bool down = (event.response_type & 0x7F) == XCB_BUTTON_PRESS;
    if (surface == mSurfaces.end() || event.detail == 0)
        return;
    mKeyboard.setState(event.state);
    const WindowApi::Handle window = xHandleOf(surface->first);
    const WindowMessage::Word flags = mouseFlagsOf(event.state);
    if (event.detail < kFirstWheelButton) {
        const auto& button = kButtons[event.detail - 1];
        messages.push_back({window, down ? button.down : button.up,
                            down ? flags | button.flag : flags & ~button.flag,
                            placeOf(event.event_x, event.event_y)});
    } else if (down && event.detail < kFirstWheelButton + std::size(kWheels)) {
        const auto& wheel = kWheels[event.detail - kFirstWheelButton];
        const auto turned = static_cast<std::uint16_t>(wheel.turned);
        messages.push_back({window, wheel.message, WindowMessage::Word{turned} << 16 | flags,
                            placeOf(event.root_x, event.root_y)});
    }
}

void XSurfaces::onMotion(const xcb_motion_notify_event_t& event, Messages& messages) {
    const auto surface = find(event.event);
    if (surface == mSurfaces.end())
        return;
    mKeyboard.setState(event.state);
    const WindowApi::Handle window = xHandleOf(surface->first);
    if (!mGrab.isCaptured())
        messages.push_back({window, wm::kSetCursor, std::uintptr_t{surface->first},
                            placeOf(kHitClient, wm::kMouseMove)});
    messages.push_back(
        {window, wm::kMouseMove, mouseFlagsOf(event.state), placeOf(event.event_x, event.event_y)});
}

void XSurfaces::onFocus(const xcb_focus_in_event_t& event, Messages& messages) {
    const auto surface = find(event.event);
    if (surface == mSurfaces.end() || event.detail >= XCB_NOTIFY_DETAIL_POINTER)
        return;
    const bool had = surface->second.hasFocus();
    const bool onChild = event.event == surface->second.child;
    const bool elsewhereInHost = !onChild && (event.detail == XCB_NOTIFY_DETAIL_VIRTUAL ||
                                              event.detail == XCB_NOTIFY_DETAIL_NONLINEAR_VIRTUAL);
    if ((event.response_type & 0x7F) == XCB_FOCUS_OUT)
        onFocusOut(surface, event);
    else if (event.mode != XCB_NOTIFY_MODE_WHILE_GRABBED && !elsewhereInHost)
        (onChild ? surface->second.childHasFocus : surface->second.hostHasFocus) = true;
    tellFocus(surface, had, messages);
}

void XSurfaces::onFocusOut(Found surface, const xcb_focus_in_event_t& event) {
    if (event.event == surface->second.child) {
        surface->second.childHasFocus = false;
        // The host's window gets it, or is told next that it is passed by.
        surface->second.hostHasFocus = event.detail == XCB_NOTIFY_DETAIL_ANCESTOR;
    } else if (event.detail == XCB_NOTIFY_DETAIL_INFERIOR && surface->second.hostHasFocus) {
        mLeaving = surface->first;
    } else {
        surface->second.hostHasFocus = false;
    }
}

void XSurfaces::settleFocus(const xcb_generic_event_t* next, Messages& messages) {
    const auto surface = mSurfaces.find(std::exchange(mLeaving, 0));
    if (surface == mSurfaces.end())
        return;
    surface->second.hostHasFocus = false;
    if (next != nullptr && (next->response_type & 0x7F) == XCB_FOCUS_IN &&
        eventAs<xcb_focus_in_event_t>(*next).event == surface->second.child)
        surface->second.childHasFocus = true;
    tellFocus(surface, true, messages);
}

void XSurfaces::tellFocus(Found surface, bool had, Messages& messages) {
    if (surface->second.hasFocus() == had)
        return;
    if (had) {
        mKeyboard.forgetKeys();
        mGrab.release(surface->second.child);
    }
    messages.push_back({xHandleOf(surface->first), had ? wm::kKillFocus : wm::kSetFocus, 0, 0});
}

bool XSurfaces::isAbsolute(xcb_input_device_id_t device) {
    const auto [known, unknown] = mAbsoluteDevices.try_emplace(device, false);
    const auto reply =
        unknown ? mConnection.answer(mLibrary.xcb_input_xi_query_device_reply,
                                     mLibrary.xcb_input_xi_query_device(mConnection.get(), device))
                : nullptr;
    if (!reply)
        return known->second;
    const auto devices = mLibrary.xcb_input_xi_query_device_infos_iterator(reply.get());
    if (devices.rem == 0)
        return false;
    auto classes = mLibrary.xcb_input_xi_device_info_classes_iterator(devices.data);
    for (; classes.rem > 0; mLibrary.xcb_input_device_class_next(&classes)) {
        const auto* const axis = reinterpret_cast<const xcb_input_valuator_class_t*>(classes.data);
        if (axis->type == XCB_INPUT_DEVICE_CLASS_TYPE_VALUATOR && axis->number == 0)
            known->second = axis->mode == XCB_INPUT_VALUATOR_MODE_ABSOLUTE;
    }
    return known->second;
}

void XSurfaces::onRawMotion(const xcb_generic_event_t& event, Messages& messages) {
    const auto& raw = eventAs<xcb_input_raw_button_press_event_t>(event);
    if (raw.extension != mInputOpcode || raw.event_type != XCB_INPUT_RAW_MOTION ||
        !has(mRawTarget) || raw.valuators_len == 0 || isAbsolute(raw.sourceid))
        return;
    constexpr std::uint32_t kAxisX = 1;
    constexpr std::uint32_t kAxisY = 2;
    const std::uint32_t axes = mLibrary.xcb_input_raw_button_press_valuator_mask(&raw)[0];
    const xcb_input_fp3232_t* value = mLibrary.xcb_input_raw_button_press_axisvalues_raw(&raw);
    mRawX += (axes & kAxisX) != 0 ? valueOf(*value++) : 0;
    mRawY += (axes & kAxisY) != 0 ? valueOf(*value) : 0;
    const std::int32_t x = takeWhole(mRawX);
    const std::int32_t y = takeWhole(mRawY);
    if (x != 0 || y != 0)
        messages.push_back({xHandleOf(mRawTarget), wm::kInput, 0, rawLong(x, y)});
}

} // namespace orbelantine
