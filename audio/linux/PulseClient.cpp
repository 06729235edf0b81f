#include "audio/linux/PulseClient.h"

#include "audio/linux/PulseState.h"
#include "core/common/log/Log.h"
#include "core/common/run/ThreadName.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <type_traits>
#include <utility>

namespace orbelantine {

namespace {

constexpr std::chrono::seconds kTryAgainAfter(1);
constexpr unsigned kSinksAndSources = PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE;
constexpr unsigned kAllLookedAt = kSinksAndSources | PA_SUBSCRIPTION_MASK_SERVER;

bool isMonitor(const pa_sink_info& /*info*/) {
    return false;
}

bool isMonitor(const pa_source_info& info) {
    return info.monitor_of_sink != PA_INVALID_INDEX;
}

std::string pulseText(const char* text) {
    return text == nullptr ? std::string() : text;
}

pa_mainloop* makeLoop(const PulseLibrary& library) {
    pa_mainloop* const loop = library.mainloop_new();
    if (loop == nullptr)
        throw std::bad_alloc();
    return loop;
}

} // namespace

PulseClient::PulseClient(const PulseLibrary& library, PulseState& state)
    : mLibrary(library)
    , mState(state)
    , mLoop(makeLoop(library), LoopEnd{&library})
    , mContext(nullptr, ContextEnd{&library}) {}

void PulseClient::run() {
    setThreadName("PulseAudioThread");
    while (!mEnding && iterate()) {
        followContext();
        connectWhenDue();
        look();
        sendWishes();
        mState.tellDevices();
    }
    mContext.reset();
}

void PulseClient::end() {
    mEnding = true;
    wake();
}

void PulseClient::wake() {
    if (!mWoken.exchange(true))
        mLibrary.mainloop_wakeup(mLoop.get());
}

bool PulseClient::iterate() {
    pa_mainloop* const loop = mLoop.get();
    if (mLibrary.mainloop_prepare(loop, timeout()) < 0)
        return false;
    // The preparation has forgotten what the loop was woken for before.
    if (mWoken)
        mLibrary.mainloop_wakeup(loop);
    const bool goesOn = mLibrary.mainloop_poll(loop) >= 0 && mLibrary.mainloop_dispatch(loop) >= 0;
    mWoken = false;
    return goesOn;
}

int PulseClient::timeout() const {
    if (mContext)
        return -1;
    const auto left = std::max(mNextTry - Clock::now(), Clock::duration::zero());
    return static_cast<int>(std::chrono::ceil<std::chrono::microseconds>(left).count());
}

void PulseClient::connectWhenDue() {
    if (mContext || Clock::now() < mNextTry)
        return;
    mContext.reset(mLibrary.context_new(mLibrary.mainloop_get_api(mLoop.get()), "Orbelantine"));
    if (!mContext)
        return onLost();
    // A failure shows in its state.
    mLibrary.context_connect(mContext.get(), nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
    followContext();
}

void PulseClient::followContext() {
    if (!mContext)
        return;
    const pa_context_state_t state = mLibrary.context_get_state(mContext.get());
    if (!PA_CONTEXT_IS_GOOD(state))
        onLost();
    else if (state == PA_CONTEXT_READY && !std::exchange(mIsReady, true))
        onReady();
}

void PulseClient::onReady() {
    ORB_LOG(kLogInfo, "%s() Connected with the sound server");
    mLossTold = false;
    mLibrary.context_set_subscribe_callback(mContext.get(), &PulseClient::onEvent, this);
    // Of a port that has come or gone only its card tells.
    const auto mask = static_cast<pa_subscription_mask_t>(kAllLookedAt | PA_SUBSCRIPTION_MASK_CARD);
    if (pa_operation* const operation =
            mLibrary.context_subscribe(mContext.get(), mask, nullptr, nullptr))
        mLibrary.operation_unref(operation);
    mChanged = kAllLookedAt;
}

void PulseClient::onLost() {
    if (!std::exchange(mLossTold, true))
        ORB_LOG(
            kLogWarning, "%s() no audio devices without a sound server: %s",
            mLibrary.strerror(mContext ? mLibrary.context_errno(mContext.get()) : PA_ERR_INTERNAL));
    mContext.reset();
    mNextTry = Clock::now() + kTryAgainAfter;
    mIsReady = false;
    mChanged = mAnswersAwaited = mSetsAwaited = 0;
    mState.replace({});
    mState.settle();
}

void PulseClient::onEvent(pa_context* /*context*/, pa_subscription_event_type_t type,
                          std::uint32_t /*index*/, void* self) {
    const unsigned changed = 1U << (type & PA_SUBSCRIPTION_EVENT_FACILITY_MASK);
    static_cast<PulseClient*>(self)->mChanged |=
        changed == PA_SUBSCRIPTION_MASK_CARD ? kSinksAndSources : changed;
}

void PulseClient::look() {
    if (!mIsReady || mAnswersAwaited != 0 || mChanged == 0)
        return;
    const unsigned changed = std::exchange(mChanged, 0);
    pa_context* const context = mContext.get();
    mFound = *mState.snapshot();
    // Held open until all questions are asked.
    ++mAnswersAwaited;
    if ((changed & PA_SUBSCRIPTION_MASK_SINK) != 0) {
        mFound.of(AudioFlow::Render).endpoints.clear();
        awaitAnswer(mLibrary.context_get_sink_info_list(context, &onEndpoint<pa_sink_info>, this));
    }
    if ((changed & PA_SUBSCRIPTION_MASK_SOURCE) != 0) {
        mFound.of(AudioFlow::Capture).endpoints.clear();
        awaitAnswer(
            mLibrary.context_get_source_info_list(context, &onEndpoint<pa_source_info>, this));
    }
    if ((changed & PA_SUBSCRIPTION_MASK_SERVER) != 0)
        awaitAnswer(mLibrary.context_get_server_info(context, &PulseClient::onServer, this));
    onAnswer();
}

void PulseClient::awaitAnswer(pa_operation* operation) {
    // None is made where the connection has just broken.
    if (operation == nullptr)
        return;
    ++mAnswersAwaited;
    mLibrary.operation_unref(operation);
}

void PulseClient::onAnswer() {
    if (--mAnswersAwaited != 0)
        return;
    mState.replace(std::move(mFound));
    mState.settle();
}

template <class Info>
void PulseClient::onEndpoint(pa_context* /*context*/, const Info* info, int last, void* self) {
    auto& client = *static_cast<PulseClient*>(self);
    if (last != 0)
        return client.onAnswer();
    if (isMonitor(*info))
        return;
    PulseEndpoint endpoint = pulseEndpoint(client.mLibrary, *info);
    client.mFound.of(endpoint.key.flow).endpoints.push_back(std::move(endpoint));
}

void PulseClient::onServer(pa_context* /*context*/, const pa_server_info* info, void* self) {
    auto& client = *static_cast<PulseClient*>(self);
    if (info != nullptr) {
        client.mFound.of(AudioFlow::Render).defaultName = pulseText(info->default_sink_name);
        client.mFound.of(AudioFlow::Capture).defaultName = pulseText(info->default_source_name);
    }
    client.onAnswer();
}

void PulseClient::wish(const PulseKey& key, const PulseWish& wish) {
    {
        const std::lock_guard lock(mWishesMutex);
        PulseWish& wished = mWishes[key];
        wished.level = wish.level ? wish.level : wished.level;
        wished.mute = wish.mute ? wish.mute : wished.mute;
    }
    wake();
}

PulseClient::Wishes PulseClient::takeWishes() {
    const std::lock_guard lock(mWishesMutex);
    return std::exchange(mWishes, {});
}

void PulseClient::sendWishes() {
    if (mSetsAwaited != 0)
        return;
    const PulseSnapshotPtr snapshot = mState.snapshot();
    for (const auto& [key, wish] : takeWishes()) {
        // Gone since.
        if (const PulseEndpoint* const endpoint = snapshot->find(key))
            send(*endpoint, wish);
    }
}

void PulseClient::send(const PulseEndpoint& endpoint, const PulseWish& wish) {
    const bool isSink = endpoint.key.flow == AudioFlow::Render;
    const char* const name = endpoint.key.name.c_str();
    if (wish.level) {
        const auto set = isSink ? mLibrary.context_set_sink_volume_by_name
                                : mLibrary.context_set_source_volume_by_name;
        // Scaled, the channels keep their balance.
        pa_cvolume channels = endpoint.channels;
        mLibrary.cvolume_scale(&channels,
                               static_cast<pa_volume_t>(std::lround(*wish.level * PA_VOLUME_NORM)));
        awaitSet(set(mContext.get(), name, &channels, &PulseClient::onSet, this));
    }
    if (wish.mute) {
        const auto set = isSink ? mLibrary.context_set_sink_mute_by_name
                                : mLibrary.context_set_source_mute_by_name;
        awaitSet(set(mContext.get(), name, *wish.mute ? 1 : 0, &PulseClient::onSet, this));
    }
}

void PulseClient::awaitSet(pa_operation* operation) {
    if (operation == nullptr)
        return;
    ++mSetsAwaited;
    mLibrary.operation_unref(operation);
}

void PulseClient::onSet(pa_context* context, int success, void* self) {
    auto& client = *static_cast<PulseClient*>(self);
    --client.mSetsAwaited;
    if (success == 0)
        ORB_LOG(kLogWarning, "%s() the sound server refuses a volume or mute state: %s",
                client.mLibrary.strerror(client.mLibrary.context_errno(context)));
}

} // namespace orbelantine
