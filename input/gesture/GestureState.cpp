#include "input/gesture/GestureState.h"

#include "core/common/run/StateEvent.h"

namespace orbelantine {

void GestureState::onNotProcessed(const char* event) const {
    logNotProcessed(kEventNotProcessed, ORB_FUNCTION_NAME, event, *this);
}

bool GestureState::mouseDelta(std::int32_t /*dx*/, std::int32_t /*dy*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
    return false;
}

bool GestureState::mouseLButton(bool /*down*/) {
    onNotProcessed(ORB_FUNCTION_NAME);
    return false;
}

} // namespace orbelantine
