#include "input/sources/GenericInputSource.h"

#include "avstack/InputContextKey.h"
#include "avstack/InputFormat.h"
#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "hid/channel/IBluetoothHIDDeviceClient.h"
#include "input/sources/IMouseSource.h"
#include "input/sources/InputTypeFlags.h"
#include "input/sources/KeyboardSource.h"

#include <algorithm>

namespace orbelantine {

ORB_OSAL_REGISTER(IInputSource, GenericInputSource, "GenericInputSource", InputFormat);

namespace {

constexpr std::uint32_t kRelativeHidType = 2;
constexpr std::uint32_t kEveryPointer = 2;
constexpr std::int32_t kMaxWheel = 3;

} // namespace

GenericInputSource::GenericInputSource(const KVStore& settings, const InputFormat& format)
    : mSettings(boost::make_shared<KVStore>(settings))
    , mTarget(boost::make_shared<IMediaElement::Dummy>())
    , mInputContext(inputContextOf(*mSettings))
    , mFormat(boost::make_shared<InputFormat>(format))
    , mNaturalWheel(!mSettings->getBoolAt("apple")) {
    ORB_LOG(kLogDebug, "%s() mInputContext=0x%p", static_cast<void*>(mInputContext.get()));
}

void GenericInputSource::start() {
    const std::lock_guard lock(mMutex);
    mRefreshPending = 0;
    if (!mInputContext) {
        ORB_LOG(kLogTrace, "%s() No input context, not starting");
        return;
    }
    listen(mInputContext->onInputSurfaceDestroyed, [this] { onInputSurfaceDestroyed(); });
    listen(mInputContext->onInputSurfaceLostFocus, [this] { onInputSurfaceLostFocus(); });
    createKeyboardSource();
    if (mFormat->mouseType != 0)
        createMouseSource();
}

void GenericInputSource::stop() {
    const std::lock_guard lock(mMutex);
    mConnections.clear();
    if (!mInputContext)
        return;
    const auto nowhere = boost::make_shared<IMediaElement::Dummy>();
    if (mMouseSource) {
        mMouseSource->registerTarget(nowhere);
        mMouseSource->stop();
    }
    if (mKeyboardSource)
        mKeyboardSource->registerTarget(nowhere);
    mKeyboardSource.reset();
    mMouseSource.reset();
}

void GenericInputSource::registerTarget(const boost::shared_ptr<IMediaElement>& target) {
    const std::lock_guard lock(mMutex);
    mTarget = target;
}

void GenericInputSource::onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) {
    const std::lock_guard lock(mMutex);
    mTarget->onFrame(buffer);
}

void GenericInputSource::refresh() {
    mRefreshPending = 1;
}

void GenericInputSource::follow(const boost::shared_ptr<void>& mark) {
    const std::lock_guard lock(mMutex);
    if (mKeyboardSource)
        mKeyboardSource->follow(mark);
    if (auto* flow = dynamic_cast<IInputFlow*>(mMouseSource.get()))
        flow->follow(mark);
}

/// Handlers run under the lock. The slot tracks this object: an event under way on the surface's
/// thread keeps it alive to the event's end, and may find it stopped.
template <class Signal, class Handler>
void GenericInputSource::listen(Signal& signal, Handler handler) {
    typename Signal::slot_type slot([this, handler](auto... event) {
        const std::lock_guard lock(mMutex);
        handler(event...);
    });
    mConnections.emplace_back(signal.connect(slot.track(shared_from_this())));
}

template <class Signal, class Handler>
void GenericInputSource::listenForMouse(Signal& signal, Handler handler) {
    listen(signal, [this, handler](auto... event) {
        if (mMouseSource)
            handler(event...);
    });
}

void GenericInputSource::createKeyboardSource() {
    mKeyboardSource = osalCreate<KeyboardSource, InputFormat>(
        OSALFactory::instance(), "KeyboardSource", *mSettings, "", *mFormat);
    mKeyboardSource->registerTarget(mTarget);
    listen(mInputContext->onKeyDown, [this](auto... key) {
        if (mKeyboardSource)
            mKeyboardSource->keyDown(key...);
    });
    listen(mInputContext->onKeyUp, [this](auto... key) {
        if (mKeyboardSource)
            mKeyboardSource->keyUp(key...);
    });
}

void GenericInputSource::createMouseSource() {
    if ((mFormat->typeFlags & (kAbsoluteInput | kRelativeInput)) == 0) {
        ORB_LOG(kLogError, "%s() No suitable mouse source");
        return;
    }
    const bool relative = (mFormat->typeFlags & kAbsoluteInput) == 0 && hidDeviceIsRelative();
    ORB_LOG(kLogDebug, "%s() using %s mouse", relative ? "relative" : "absolute");
    mMouseSource = osalCreate<IMouseSource>(OSALFactory::instance(), "IMouseSource", *mSettings,
                                            relative ? "" : "absolute_mouse");
    mMouseSource->registerTarget(mTarget);
    mMouseSource->start(mInputContext);
    connectMouse();
}

bool GenericInputSource::hidDeviceIsRelative() {
    const auto device = osalCreate<IBluetoothHIDDeviceClient>(
        OSALFactory::instance(), "IBluetoothHIDDeviceClient", *mSettings, "");
    return device->getType() == kRelativeHidType;
}

void GenericInputSource::connectMouse() {
    IInputContext& context = *mInputContext;
    listenForMouse(context.onMouseClickDown,
                   [this](auto... click) { onMouseClick(true, click...); });
    listenForMouse(context.onMouseClickUp,
                   [this](auto... click) { onMouseClick(false, click...); });
    listenForMouse(context.onAbsoluteMouseMove, [this](auto... at) { onAbsoluteMouseMove(at...); });
    listenForMouse(context.onRelativeMouseMove,
                   [this](auto... delta) { mMouseSource->rawMouseMove(delta...); });
    listenForMouse(context.onRelativeMouseWheel,
                   [this](auto... turn) { onRelativeMouseWheel(turn...); });
    const auto listenForPointer = [this](auto& signal, PointerEvent event) {
        listenForMouse(signal,
                       [this, event](auto... pointer) { processPointerEvent(event, pointer...); });
    };
    listenForPointer(context.onPointerDown, PointerEvent::Down);
    listenForPointer(context.onPointerUp, PointerEvent::Up);
    listenForPointer(context.onPointerUpdate, PointerEvent::Update);
}

void GenericInputSource::onInputSurfaceDestroyed() {
    ORB_LOG(kLogDebug, "%s() ");
    if (mKeyboardSource)
        mKeyboardSource->releaseAllKeys();
}

void GenericInputSource::onInputSurfaceLostFocus() {
    if (mKeyboardSource)
        mKeyboardSource->releaseAllKeys();
    if (mMouseSource)
        mMouseSource->killFocus();
}

void GenericInputSource::onMouseClick(bool down, IInputContext::eMouseButton button, std::int32_t x,
                                      std::int32_t y) {
    if (button == IInputContext::MouseButtonLeft)
        onLButton(down, x, y);
    else if (button == IInputContext::MouseButtonRight)
        onRButton(down, x, y);
}

void GenericInputSource::onLButton(bool down, std::int32_t x, std::int32_t y) {
    ORB_LOG(kLogDebug, "%s() touch: %d, down: %d, x: %d, y: %d, id: %d", 0, down ? 1 : 0, x, y, 0);
    mMouseSource->mouseLButton(down, x, y, 0, takeRefresh());
}

void GenericInputSource::onRButton(bool down, std::int32_t x, std::int32_t y) {
    ORB_LOG(kLogDebug, "%s() down:%s.", down ? "true" : "false");
    mMouseSource->mouseRButton(down, x, y, takeRefresh());
}

void GenericInputSource::onAbsoluteMouseMove(std::int32_t x, std::int32_t y) {
    if (x == mLastAbsolute.x && y == mLastAbsolute.y)
        return;
    mLastAbsolute = {x, y};
    mMouseSource->mouseMove(x, y, 0);
}

void GenericInputSource::onRelativeMouseWheel(std::int32_t delta, std::int32_t x, std::int32_t y) {
    const std::int32_t clamped = std::clamp(delta, -kMaxWheel, kMaxWheel);
    const std::int32_t amount = mNaturalWheel ? clamped : -clamped;
    mMouseSource->mouseWheel(amount >= 1, x, y, amount);
}

void GenericInputSource::processPointerEvent(PointerEvent event, IInputContext::ePointerType type,
                                             std::uint32_t id, std::int32_t x, std::int32_t y,
                                             bool primary) {
    if (!takesPointer(type, primary))
        return;
    IInputContext::Point at{x, y};
    if (mMouseSource->isAbsolute() && !mInputContext->screenToInputSurface(at)) {
        ORB_LOG(kLogError, "%s() Unable to get pointer client position.");
        return;
    }
    const auto contact = static_cast<std::int32_t>(id);
    if (event == PointerEvent::Update) {
        mMouseSource->touchMove(at.x, at.y, contact);
        return;
    }
    const bool down = event == PointerEvent::Down;
    ORB_LOG(kLogDebug, "%s() touch: %d, down: %d, x: %d, y: %d, id: %d", 1, down ? 1 : 0, at.x,
            at.y, contact);
    mMouseSource->touch(down, at.x, at.y, contact, takeRefresh());
}

bool GenericInputSource::takesPointer(IInputContext::ePointerType type, bool primary) const {
    if (type != IInputContext::PointerPen && type != IInputContext::PointerTouch)
        return false;
    return mFormat->touchType == kEveryPointer || (mFormat->touchType != 0 && primary);
}

bool GenericInputSource::takeRefresh() {
    return mRefreshPending.exchange(0) != 0;
}

} // namespace orbelantine
