#pragma once

#include <pulse/pulseaudio.h>

#include <memory>

namespace orbelantine {

// Each without its prefix.
#define ORB_PULSE_FUNCTIONS(USE)                                                                   \
    USE(mainloop_new)                                                                              \
    USE(mainloop_free)                                                                             \
    USE(mainloop_get_api)                                                                          \
    USE(mainloop_prepare)                                                                          \
    USE(mainloop_poll)                                                                             \
    USE(mainloop_dispatch)                                                                         \
    USE(mainloop_wakeup)                                                                           \
    USE(context_new)                                                                               \
    USE(context_unref)                                                                             \
    USE(context_connect)                                                                           \
    USE(context_disconnect)                                                                        \
    USE(context_errno)                                                                             \
    USE(context_get_state)                                                                         \
    USE(context_subscribe)                                                                         \
    USE(context_set_subscribe_callback)                                                            \
    USE(context_get_server_info)                                                                   \
    USE(context_get_sink_info_list)                                                                \
    USE(context_get_source_info_list)                                                              \
    USE(context_set_sink_volume_by_name)                                                           \
    USE(context_set_source_volume_by_name)                                                         \
    USE(context_set_sink_mute_by_name)                                                             \
    USE(context_set_source_mute_by_name)                                                           \
    USE(operation_unref)                                                                           \
    USE(proplist_gets)                                                                             \
    USE(cvolume_max)                                                                               \
    USE(cvolume_scale)                                                                             \
    USE(strerror)

/// The functions used of PulseAudio's client library, which a machine may lack.
struct PulseLibrary {
    static constexpr const char* kFile = "libpulse.so.0";

#define ORB_PULSE_MEMBER(name) decltype(&::pa_##name) name = nullptr;
    ORB_PULSE_FUNCTIONS(ORB_PULSE_MEMBER)
#undef ORB_PULSE_MEMBER

    /// Null without the library, which is logged. It stays loaded.
    [[nodiscard]] static std::unique_ptr<const PulseLibrary> load(const char* file = kFile);
};

} // namespace orbelantine
