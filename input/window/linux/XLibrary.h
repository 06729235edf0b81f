#pragma once

#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-x11.h>

// One of its names is a word of C++.
#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wkeyword-macro"
#endif
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#if defined(__clang__)
#pragma clang diagnostic pop
#endif

#include <array>
#include <cstddef>
#include <memory>
#include <optional>

namespace orbelantine {

#define ORB_XCB_FUNCTIONS(USE)                                                                     \
    USE(xcb_connect)                                                                               \
    USE(xcb_disconnect)                                                                            \
    USE(xcb_connection_has_error)                                                                  \
    USE(xcb_get_file_descriptor)                                                                   \
    USE(xcb_get_setup)                                                                             \
    USE(xcb_setup_roots_iterator)                                                                  \
    USE(xcb_screen_next)                                                                           \
    USE(xcb_generate_id)                                                                           \
    USE(xcb_flush)                                                                                 \
    USE(xcb_poll_for_event)                                                                        \
    USE(xcb_request_check)                                                                         \
    USE(xcb_query_extension)                                                                       \
    USE(xcb_query_extension_reply)                                                                 \
    USE(xcb_get_geometry)                                                                          \
    USE(xcb_get_geometry_reply)                                                                    \
    USE(xcb_get_input_focus)                                                                       \
    USE(xcb_get_input_focus_reply)                                                                 \
    USE(xcb_set_input_focus)                                                                       \
    USE(xcb_translate_coordinates)                                                                 \
    USE(xcb_translate_coordinates_reply)                                                           \
    USE(xcb_create_window)                                                                         \
    USE(xcb_create_window_checked)                                                                 \
    USE(xcb_destroy_window)                                                                        \
    USE(xcb_map_window)                                                                            \
    USE(xcb_configure_window)                                                                      \
    USE(xcb_change_window_attributes)                                                              \
    USE(xcb_grab_pointer)                                                                          \
    USE(xcb_grab_pointer_reply)                                                                    \
    USE(xcb_ungrab_pointer)                                                                        \
    USE(xcb_warp_pointer)                                                                          \
    USE(xcb_create_pixmap)                                                                         \
    USE(xcb_free_pixmap)                                                                           \
    USE(xcb_create_gc)                                                                             \
    USE(xcb_free_gc)                                                                               \
    USE(xcb_poly_fill_rectangle)                                                                   \
    USE(xcb_create_cursor)

#define ORB_XCB_INPUT_FUNCTIONS(USE)                                                               \
    USE(xcb_input_xi_query_version)                                                                \
    USE(xcb_input_xi_query_version_reply)                                                          \
    USE(xcb_input_xi_select_events)                                                                \
    USE(xcb_input_xi_query_device)                                                                 \
    USE(xcb_input_xi_query_device_reply)                                                           \
    USE(xcb_input_xi_query_device_infos_iterator)                                                  \
    USE(xcb_input_xi_device_info_classes_iterator)                                                 \
    USE(xcb_input_device_class_next)                                                               \
    USE(xcb_input_raw_button_press_valuator_mask)                                                  \
    USE(xcb_input_raw_button_press_axisvalues_raw)

#define ORB_XCB_KEYBOARD_FUNCTIONS(USE)                                                            \
    USE(xcb_xkb_select_events)                                                                     \
    USE(xcb_xkb_per_client_flags)                                                                  \
    USE(xcb_xkb_per_client_flags_reply)

#define ORB_XCB_TEST_FUNCTIONS(USE) USE(xcb_test_fake_input)

#define ORB_XKB_FUNCTIONS(USE)                                                                     \
    USE(xkb_context_new)                                                                           \
    USE(xkb_context_unref)                                                                         \
    USE(xkb_keymap_unref)                                                                          \
    USE(xkb_keymap_key_get_syms_by_level)                                                          \
    USE(xkb_keymap_num_layouts_for_key)                                                            \
    USE(xkb_state_new)                                                                             \
    USE(xkb_state_unref)                                                                           \
    USE(xkb_state_update_mask)                                                                     \
    USE(xkb_state_key_get_one_sym)                                                                 \
    USE(xkb_state_key_get_utf32)

#define ORB_XKB_X11_FUNCTIONS(USE)                                                                 \
    USE(xkb_x11_setup_xkb_extension)                                                               \
    USE(xkb_x11_get_core_keyboard_device_id)                                                       \
    USE(xkb_x11_keymap_new_from_device)

/// The functions used of X's client libraries, which a machine may lack.
struct XLibrary {
    using Files = std::array<const char*, 6>;
    static constexpr Files kFiles = {
        "libxcb.so.1",       "libxcb-xinput.so.0", "libxcb-xkb.so.1",
        "libxcb-xtest.so.0", "libxkbcommon.so.0",  "libxkbcommon-x11.so.0",
    };

#define ORB_X_MEMBER(name) decltype(&::name) name = nullptr;
    ORB_XCB_FUNCTIONS(ORB_X_MEMBER)
    ORB_XCB_INPUT_FUNCTIONS(ORB_X_MEMBER)
    ORB_XCB_KEYBOARD_FUNCTIONS(ORB_X_MEMBER)
    ORB_XCB_TEST_FUNCTIONS(ORB_X_MEMBER)
    ORB_XKB_FUNCTIONS(ORB_X_MEMBER)
    ORB_XKB_X11_FUNCTIONS(ORB_X_MEMBER)
#undef ORB_X_MEMBER

    /// Fills the table; else the index of the file that is missing. What was loaded stays loaded.
    [[nodiscard]] std::optional<std::size_t> load(const Files& files = kFiles);
};

} // namespace orbelantine
