#include "input/relative/RelativeMouseSource.h"

#include "core/common/OSAL.h"
#include "core/common/errors/ErrorCode.h"
#include "core/common/log/Log.h"
#include "input/relative/CallbackWait.h"
#include "input/relative/RelativeMouseStates.h"
#include "input/sources/IMouseReverser.h"
#include "input/sources/IRemoteMouseInfoProvider.h"

#include <utility>

namespace orbelantine {

ORB_OSAL_REGISTER(IMouseSource, RelativeMouseSource, "RelativeMouseSource");

namespace {

constexpr std::chrono::milliseconds kAppleClickDelay(100);
constexpr std::uint32_t kDragBase = 10000;
constexpr float kAppleDragScale = 1.2F;
constexpr float kDragScale = 0.16667F;
constexpr std::chrono::seconds kStopBound(5);

/// What every dimensions update of the process writes and every source begins with.
std::atomic<CursorExtent> lastLogical{};
static_assert(std::atomic<CursorExtent>::is_always_lock_free);

} // namespace

template <class... Parameters>
auto RelativeMouseSource::slot(void (RelativeMouseSource::*event)(Parameters...)) {
    return [this, event, gate = mGate](Parameters... arguments) {
        const CallGate::Call call(*gate);
        if (call.inside())
            (this->*event)(arguments...);
    };
}

RelativeMouseSource::RelativeMouseSource(const KVStore& store, SettingsApi& settings, IClock& clock)
    : StateMachine(clock)
    , mStore(store)
    , mLastSendNs(nowNs())
    , mLogical(lastLogical)
    , mSettings(settings)
    , mGate(boost::make_shared<CallGate>()) {}

RelativeMouseSource::~RelativeMouseSource() {
    // The base ends the process if this is the worker.
    if (onWorker())
        return;
    dropEvents();
    if (!mGate->shut(kStopBound))
        ORB_LOG(kLogError, "%s() a slot is still being called");
    postAndWait([this](const auto&) { finish(); });
}

void RelativeMouseSource::registerTarget(const boost::shared_ptr<IMediaElement>& target) {
    enqueue([this, target](const auto&) { mTarget = target; });
}

void RelativeMouseSource::start(const boost::shared_ptr<IInputContext>& context) {
    const auto speed = static_cast<std::uint32_t>(context->getSystemMouseSpeed());
    ORB_LOG(kLogDebug, "%s() mouse speed=%d", static_cast<int>(speed));
    enqueue([this, context, speed](const auto&) {
        mMouseSpeed = speed;
        mContext = context;
        context->onLogicalDimensionsChanged.connect(
            slot(&RelativeMouseSource::rmiLogicalDimensions));
        context->onRotationChanged.connect(slot(&RelativeMouseSource::rotationChanged));
        changeState<RelativeMouseStateStart>();
    });
}

void RelativeMouseSource::stop() {
    enqueue([this](const auto&) { finish(); });
}

void RelativeMouseSource::finish() {
    if (mContext) {
        mContext->onLogicalDimensionsChanged.disconnect_all_slots();
        mContext->onRotationChanged.disconnect_all_slots();
    }
    mLastError = {};
    changeState<RelativeMouseStateFini>();
}

bool RelativeMouseSource::isAbsolute() {
    return false;
}

void RelativeMouseSource::killFocus() {
    postEvent(&RelativeMouseState::killFocus);
}

void RelativeMouseSource::mouseMove(std::int32_t x, std::int32_t y, std::int32_t id) {
    postEvent(&RelativeMouseState::mouseMove, x, y, id);
}

void RelativeMouseSource::mouseLButton(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                                       bool reconnect) {
    postEvent(&RelativeMouseState::mouseLButton, down, x, y, id, reconnect);
}

void RelativeMouseSource::mouseRButton(bool down, std::int32_t x, std::int32_t y, bool reconnect) {
    postEvent(&RelativeMouseState::mouseRButton, down, x, y, reconnect);
}

void RelativeMouseSource::touchMove(std::int32_t x, std::int32_t y, std::int32_t id) {
    postEvent(&RelativeMouseState::touchMove, x, y, id);
}

void RelativeMouseSource::touch(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                                bool reconnect) {
    postEvent(&RelativeMouseState::touch, down, x, y, id, reconnect);
}

void RelativeMouseSource::rawMouseMove(std::int32_t dx, std::int32_t dy) {
    postEvent(&RelativeMouseState::rawMouseMove, dx, dy);
}

void RelativeMouseSource::mouseWheel(bool up, std::int32_t x, std::int32_t y, std::int32_t amount) {
    postEvent(&RelativeMouseState::mouseWheel, up, x, y, amount);
}

void RelativeMouseSource::rmiServerStarted(error_code ec) {
    postEvent(&RelativeMouseState::rmiServerStarted, ec);
}

void RelativeMouseSource::rmiMousePosition(std::int32_t x, std::int32_t y) {
    postEvent(&RelativeMouseState::rmiMousePosition, x, y);
}

void RelativeMouseSource::rmiMouseViewport(std::int32_t width, std::int32_t height) {
    enqueue([this, width, height](const auto&) { mRmi = {.width = width, .height = height}; });
}

void RelativeMouseSource::rmiLogicalDimensions(std::int32_t width, std::int32_t height,
                                               double scale, std::int32_t inset) {
    if (!isWithinReach(width) || !isWithinReach(height) || !isWithinReach(inset)) {
        ORB_LOG(kLogError, "%s() no phone has a screen of %dx%d with an inset of %d: ignored",
                width, height, inset);
        return;
    }
    enqueue([this, width, height, scale, inset](const auto&) {
        mInset = saturated(-std::int64_t{inset});
        mScaledViewport = scale > 1.0;
        mLogical = logicalExtent({.width = width, .height = height}, scale);
        lastLogical = mLogical;
        ORB_LOG(kLogDebug, "%s() new dimensions %dx%d, scale=%lf, inset=%d, logical %dx%d", width,
                height, scale, inset, mLogical.width, mLogical.height);
    });
    postEvent(&RelativeMouseState::rmiLogicalDimensions, width, height, scale, inset);
}

void RelativeMouseSource::rotationChanged(std::int32_t rotation) {
    enqueue([this, rotation](const auto&) {
        mRotation = rotation;
        ORB_LOG(kLogDebug, "%s() new rotation=%d", rotation);
    });
    postEvent(&RelativeMouseState::rotationChanged, rotation);
}

void RelativeMouseSource::follow(const boost::shared_ptr<void>& mark) {
    enqueue([mark](const auto&) {});
}

void RelativeMouseSource::updateLogicalDimensions(std::uint32_t width, std::uint32_t height) {
    ORB_LOG(kLogDebug, "%s() width=%u, height=%u", width, height);
    mLogical = {.width = saturated(width), .height = saturated(height)};
}

void RelativeMouseSource::doInit() {
    mPosition = {};
    mHiddenPosition = {};
    auto& factory = OSALFactory::instance();
    mReverser = osalCreate<IMouseReverser, IClock&>(factory, "IMouseReverser", mStore,
                                                    mStore.getStringAt("hint"), clock());
    mProvider = osalCreate<IRemoteMouseInfoProvider>(factory, "IRemoteMouseInfoProvider", mStore,
                                                     mStore.getStringAt("hint"));
    const bool apple = mStore.getBoolAt("apple");
    mClickDelay = apple ? kAppleClickDelay : std::chrono::milliseconds(0);
    mDragFactor = readDragFactor(apple);
    mProvider->onCursorMove.connect(slot(&RelativeMouseSource::rmiMousePosition));
    mProvider->onCursorViewPortChanged.connect(slot(&RelativeMouseSource::rmiMouseViewport));
    mProvider->onLogicalDimensionsChanged.connect(slot(&RelativeMouseSource::rmiLogicalDimensions));
    mProvider->start(slot(&RelativeMouseSource::rmiServerStarted));
}

float RelativeMouseSource::readDragFactor(bool apple) {
    std::uint32_t speed = kDragBase;
    const auto error = mSettings.getInteger("DragSpeed", speed);
    if (error != win32::kErrorSuccess && error != win32::kErrorFileNotFound)
        ORB_LOG(kLogWarning, "%s() DragSpeed is not an integer or can't be read, error %u", error);
    return static_cast<float>(speed / double{kDragBase} * (apple ? kAppleDragScale : kDragScale));
}

void RelativeMouseSource::doFini() {
    if (mProvider) {
        if (!stopProvider())
            ORB_LOG(kLogWarning, "%s() the remote mouse info has not stopped in time");
        // One signal twice and one not at all: the provider's end is that of its signals.
        mProvider->onCursorMove.disconnect_all_slots();
        mProvider->onCursorViewPortChanged.disconnect_all_slots();
        mProvider->onCursorMove.disconnect_all_slots();
        mProvider.reset();
    }
    mContext.reset();
}

bool RelativeMouseSource::stopProvider() {
    return waitForCallback(clock(), kStopBound,
                           [this](const auto& callback) { mProvider->stop(callback); });
}

} // namespace orbelantine
