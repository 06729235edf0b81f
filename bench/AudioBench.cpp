#include "tests/audio/linux/PrivatePulse.h"
#include "tests/binding/Library.h"

#include <benchmark/benchmark.h>
#include <pulse/pulseaudio.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

// A change of volume at the sound server: until a host's callback hears of it through the exports,
// beside the callback of a client that does nothing else.

namespace orbelantine {
namespace {

using Handle = void*;
using Clock = std::chrono::steady_clock;

/// Counts the news, each with its time.
class News {
  public:
    static void arrive() {
        at = Clock::now();
        ++count;
        count.notify_one();
    }

    static void await(unsigned former) { count.wait(former); }

    inline static std::atomic<unsigned> count = 0;
    inline static std::atomic<Clock::time_point> at = Clock::time_point();
};

/// A host with a callback for silence: of muted speakers it hears at each change.
class Host {
  public:
    Host() {
        using Delegates = void(Handle, void (*)(), unsigned (*)(), void (*)(unsigned, unsigned));
        library.common<Delegates>("TwoBoolCallbackImpl_director_connect")(
            mCallback, [] {}, []() -> unsigned { return 0; },
            [](unsigned, unsigned) { News::arrive(); });
        mFunction = library.common<Handle(Handle)>("new_TwoBoolCallback__SWIG_1")(mCallback);
        const Handle signal = audio<Handle(Handle)>("AudioDevicesState_onMute_get")(mDevices);
        library.common<void(Handle)>("delete_connection")(library.common<Handle(Handle, Handle)>(
            "SignalTwoBoolCallback_connect__SWIG_0")(signal, mFunction));
        const unsigned before = News::count;
        audio<void(Handle, Handle)>("AudioDevicesState_start")(mDevices, nullptr);
        News::await(before);
    }

    ~Host() {
        audio<void(Handle)>("delete_AudioDevicesState")(mDevices);
        library.common<void(Handle)>("delete_TwoBoolCallback")(mFunction);
        library.common<void(Handle)>("delete_TwoBoolCallbackImpl")(mCallback);
    }

    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

  private:
    template <class Function>
    Function* audio(const std::string& rest) {
        return library.call<Function>("audio", rest);
    }

    test::Library& library = test::Library::instance();
    Handle mDevices = audio<Handle()>("new_AudioDevicesState")();
    Handle mCallback = library.common<Handle()>("new_TwoBoolCallbackImpl")();
    Handle mFunction = nullptr;
};

/// Subscribes, and asks for the value at each event, which carries none.
class Subscriber {
  public:
    Subscriber() {
        pa_context_set_state_callback(
            mContext, [](pa_context*, void* loop) { signal(loop); }, mLoop);
        pa_context_set_subscribe_callback(mContext, &Subscriber::onEvent, nullptr);
        pa_threaded_mainloop_lock(mLoop);
        pa_context_connect(mContext, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
        pa_threaded_mainloop_start(mLoop);
        while (pa_context_get_state(mContext) != PA_CONTEXT_READY)
            pa_threaded_mainloop_wait(mLoop);
        pa_operation* const subscribed = pa_context_subscribe(
            mContext, PA_SUBSCRIPTION_MASK_SINK, [](pa_context*, int, void* loop) { signal(loop); },
            mLoop);
        while (pa_operation_get_state(subscribed) == PA_OPERATION_RUNNING)
            pa_threaded_mainloop_wait(mLoop);
        pa_operation_unref(subscribed);
        pa_threaded_mainloop_unlock(mLoop);
    }

    ~Subscriber() {
        pa_threaded_mainloop_stop(mLoop);
        pa_context_disconnect(mContext);
        pa_context_unref(mContext);
        pa_threaded_mainloop_free(mLoop);
    }

    Subscriber(const Subscriber&) = delete;
    Subscriber& operator=(const Subscriber&) = delete;

  private:
    static void signal(void* loop) {
        pa_threaded_mainloop_signal(static_cast<pa_threaded_mainloop*>(loop), 0);
    }

    static void onEvent(pa_context* context, pa_subscription_event_type_t /*type*/,
                        std::uint32_t index, void* /*unused*/) {
        pa_operation_unref(pa_context_get_sink_info_by_index(
            context, index,
            [](pa_context*, const pa_sink_info* info, int, void*) {
                if (info != nullptr)
                    News::arrive();
            },
            nullptr));
    }

    pa_threaded_mainloop* mLoop = pa_threaded_mainloop_new();
    pa_context* mContext = pa_context_new(pa_threaded_mainloop_get_api(mLoop), "bare");
};

template <class Listener>
void changeVolume(benchmark::State& state) {
    test::PrivatePulse pulse;
    if (!pulse.runs())
        return state.SkipWithError("there is no pulseaudio");
    pulse.tell("load-module module-null-sink sink_name=desk");
    pulse.tell("set-sink-mute desk 1");
    const Listener listener;
    unsigned volume = PA_VOLUME_NORM / 4;
    for (auto _ : state) {
        volume = volume == PA_VOLUME_NORM / 4 ? PA_VOLUME_NORM / 2 : PA_VOLUME_NORM / 4;
        const unsigned before = News::count;
        const auto start = Clock::now();
        pulse.tell("set-sink-volume desk " + std::to_string(volume));
        News::await(before);
        state.SetIterationTime(std::chrono::duration<double>(News::at.load() - start).count());
    }
}

BENCHMARK(changeVolume<Host>)->Name("BM_VolumeChange/ours")->UseManualTime();
BENCHMARK(changeVolume<Subscriber>)->Name("BM_VolumeChange/bare")->UseManualTime();

} // namespace
} // namespace orbelantine
