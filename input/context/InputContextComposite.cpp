#include "input/context/InputContextComposite.h"

#include "core/common/log/Log.h"

#include <tuple>

namespace orbelantine {

namespace {

constexpr const char* kMainId = "";

constexpr auto kSignals = std::make_tuple(
    &IInputContext::onKeyDown, &IInputContext::onKeyUp, &IInputContext::onMouseClickDown,
    &IInputContext::onMouseClickUp, &IInputContext::onAbsoluteMouseMove,
    &IInputContext::onRelativeMouseWheel, &IInputContext::onRelativeMouseMove,
    &IInputContext::onPointerDown, &IInputContext::onPointerUp, &IInputContext::onPointerUpdate,
    &IInputContext::onInputSurfaceLostFocus, &IInputContext::onInputSurfaceDestroyed,
    &IInputContext::onLogicalDimensionsChanged, &IInputContext::onRotationChanged,
    &IInputContext::onTextComposed);

} // namespace

void InputContextComposite::setMainInputContext(const boost::shared_ptr<IInputContext>& context) {
    if (mMainContext)
        unregisterEvents(kMainId);
    mMainContext = context;
    registerEvents(kMainId, context.get());
}

void InputContextComposite::addSecondaryContext(const std::string& id,
                                                const boost::shared_ptr<IInputContext>& context) {
    ORB_LOG(kLogTrace, "%s() id=%s", id.c_str());
    mSecondaries[id] = context;
    registerEvents(id, context.get());
}

void InputContextComposite::removeSecondaryContext(const std::string& id) {
    ORB_LOG(kLogTrace, "%s() id=%s", id.c_str());
    mSecondaries.erase(id);
    unregisterEvents(id);
}

void InputContextComposite::registerEvents(const std::string& id, IInputContext* context) {
    if (context == nullptr)
        return;
    ORB_LOG(kLogTrace, "%s() connecting id=%s", id.c_str());
    auto& connections = mConnections[id];
    // A signal connected to a signal also outlasts an event under way on a surface's thread.
    const auto relay = [&](auto signal) {
        connections.emplace_back((context->*signal).connect(this->*signal));
    };
    std::apply([&](auto... signals) { (relay(signals), ...); }, kSignals);
}

void InputContextComposite::unregisterEvents(const std::string& id) {
    const auto found = mConnections.find(id);
    if (found == mConnections.end()) {
        ORB_LOG(kLogError, "%s() id=%s does not exist", id.c_str());
        return;
    }
    ORB_LOG(kLogTrace, "%s() disconnecting id=%s", id.c_str());
    for (auto& connection : found->second)
        connection.disconnect();
}

std::uint16_t InputContextComposite::convertVKCodeToUnicode(std::uint32_t vk) {
    return mMainContext ? mMainContext->convertVKCodeToUnicode(vk) : 0;
}

std::uint32_t InputContextComposite::mapVK(std::uint32_t index) {
    return mMainContext ? mMainContext->mapVK(index) : 0;
}

std::uint32_t InputContextComposite::mapScan(std::uint32_t index) {
    return mMainContext ? mMainContext->mapScan(index) : 0;
}

void InputContextComposite::lockSystemMouse() {
    if (mMainContext)
        mMainContext->lockSystemMouse();
}

void InputContextComposite::unlockSystemMouse(std::int32_t x, std::int32_t y) {
    if (mMainContext)
        mMainContext->unlockSystemMouse(x, y);
}

std::int32_t InputContextComposite::getSystemMouseSpeed() {
    return mMainContext ? mMainContext->getSystemMouseSpeed() : DEFAULT_MOUSE_SPEED;
}

bool InputContextComposite::screenToInputSurface(Point& point) {
    return mMainContext && mMainContext->screenToInputSurface(point);
}

bool InputContextComposite::inputSurfaceToScreen(Point& point) {
    return mMainContext && mMainContext->inputSurfaceToScreen(point);
}

bool InputContextComposite::getInputSurfaceRectWithinScreen(Rect& rect) {
    return mMainContext && mMainContext->getInputSurfaceRectWithinScreen(rect);
}

void InputContextComposite::setCaptureMouseExclusively() {
    if (mMainContext)
        mMainContext->setCaptureMouseExclusively();
}

void InputContextComposite::releaseCaptureMouseExclusively() {
    if (mMainContext)
        mMainContext->releaseCaptureMouseExclusively();
}

} // namespace orbelantine
