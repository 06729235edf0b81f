#pragma once

#include "audio/linux/PulseLibrary.h"
#include "audio/linux/PulseSnapshot.h"

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

namespace orbelantine {

class PulseState;

/// What an endpoint is to be set to.
struct PulseWish {
    std::optional<float> level;
    std::optional<bool> mute;
};

/// Talks with the server, and looks for one where there is none. What the server tells goes to the
/// state; of what it is to be told, only the newest wish of an endpoint waits.
///
/// `run` is the thread that owns it all; the others are for any thread. Nothing waits for the
/// server, whose answers may never come.
class PulseClient {
  public:
    /// Throws std::bad_alloc where there can be no loop.
    PulseClient(const PulseLibrary& library, PulseState& state);
    PulseClient(const PulseClient&) = delete;
    PulseClient& operator=(const PulseClient&) = delete;

    /// Until the end.
    void run();
    void end();

    void wish(const PulseKey& key, const PulseWish& wish);
    void wake();

  private:
    struct LoopEnd {
        const PulseLibrary* library;

        void operator()(pa_mainloop* loop) const { library->mainloop_free(loop); }
    };

    struct ContextEnd {
        const PulseLibrary* library;

        void operator()(pa_context* context) const {
            library->context_disconnect(context);
            library->context_unref(context);
        }
    };

    using Clock = std::chrono::steady_clock;
    using Wishes = std::map<PulseKey, PulseWish>;

    [[nodiscard]] bool iterate();
    [[nodiscard]] int timeout() const;

    void connectWhenDue();
    void followContext();
    void onReady();
    void onLost();

    // Looking: one look at a time, at whatever has changed since the one before.
    void look();
    void awaitAnswer(pa_operation* operation);
    void onAnswer();
    template <class Info>
    static void onEndpoint(pa_context* context, const Info* info, int last, void* self);
    static void onServer(pa_context* context, const pa_server_info* info, void* self);
    static void onEvent(pa_context* context, pa_subscription_event_type_t type, std::uint32_t index,
                        void* self);

    // Setting: all wishes at once, the next ones after the answers.
    void sendWishes();
    [[nodiscard]] Wishes takeWishes();
    void send(const PulseEndpoint& endpoint, const PulseWish& wish);
    void awaitSet(pa_operation* operation);
    static void onSet(pa_context* context, int success, void* self);

    const PulseLibrary& mLibrary;
    PulseState& mState;
    const std::unique_ptr<pa_mainloop, LoopEnd> mLoop;

    std::atomic<bool> mEnding = false;
    std::atomic<bool> mWoken = false;
    std::mutex mWishesMutex;
    Wishes mWishes;

    // The thread's.
    std::unique_ptr<pa_context, ContextEnd> mContext;
    Clock::time_point mNextTry;
    bool mIsReady = false;
    bool mLossTold = false;
    unsigned mChanged = 0; // bits of pa_subscription_mask_t
    unsigned mAnswersAwaited = 0;
    unsigned mSetsAwaited = 0;
    PulseSnapshot mFound;
};

} // namespace orbelantine
