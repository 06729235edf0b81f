#include "input/relative/RelativeMouseState.h"

#include "core/common/run/StateEvent.h"

namespace orbelantine {

void RelativeMouseState::onNotProcessed(const char* event) const {
    logNotProcessed(kEventNotProcessedCall, ORB_FUNCTION_NAME, event, *this);
}

void RelativeMouseState::registerTarget(const boost::shared_ptr<IMediaElement>& /*target*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::start(const boost::shared_ptr<IInputContext>& /*context*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::stop() {
    onNotProcessed(ORB_FUNCTION_NAME);
}

bool RelativeMouseState::isAbsolute() {
    onNotProcessed(ORB_FUNCTION_NAME);
    return false;
}

void RelativeMouseState::killFocus() {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::mouseMove(std::int32_t /*x*/, std::int32_t /*y*/, std::int32_t /*id*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::mouseLButton(bool /*down*/, std::int32_t /*x*/, std::int32_t /*y*/,
                                      std::int32_t /*id*/, bool /*reconnect*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::mouseRButton(bool /*down*/, std::int32_t /*x*/, std::int32_t /*y*/,
                                      bool /*reconnect*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::touchMove(std::int32_t /*x*/, std::int32_t /*y*/, std::int32_t /*id*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::touch(bool /*down*/, std::int32_t /*x*/, std::int32_t /*y*/,
                               std::int32_t /*id*/, bool /*reconnect*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::rawMouseMove(std::int32_t /*dx*/, std::int32_t /*dy*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::mouseWheel(bool /*up*/, std::int32_t /*x*/, std::int32_t /*y*/,
                                    std::int32_t /*amount*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::rmiServerStarted(error_code /*ec*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::rmiMousePosition(std::int32_t /*x*/, std::int32_t /*y*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::rmiMouseViewport(std::int32_t /*width*/, std::int32_t /*height*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::rmiLogicalDimensions(std::int32_t /*width*/, std::int32_t /*height*/,
                                              double /*scale*/, std::int32_t /*inset*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

void RelativeMouseState::rotationChanged(std::int32_t /*rotation*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
}

} // namespace orbelantine
