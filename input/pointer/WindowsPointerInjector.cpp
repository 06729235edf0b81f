#include "input/pointer/WindowsPointerInjector.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IPointerInjector, WindowsPointerInjector, "WindowsPointerInjector");

WindowsPointerInjector::WindowsPointerInjector(PointerApi& api)
    : mApi(api) {
    ORB_TRACED();
}

WindowsPointerInjector::~WindowsPointerInjector() {
    ORB_TRACED();
}

void WindowsPointerInjector::injectMouseInput(std::int16_t dx, std::int16_t dy) {
    send(ORB_FUNCTION_NAME, PointerApi::kMove, dx, dy);
}

void WindowsPointerInjector::injectMouseInput(LeftDown /*button*/) {
    send(ORB_FUNCTION_NAME, PointerApi::kLeftDown);
}

void WindowsPointerInjector::injectMouseInput(LeftUp /*button*/) {
    send(ORB_FUNCTION_NAME, PointerApi::kLeftUp);
}

void WindowsPointerInjector::injectMouseInput(RightDown /*button*/) {
    send(ORB_FUNCTION_NAME, PointerApi::kRightDown);
}

void WindowsPointerInjector::injectMouseInput(RightUp /*button*/) {
    send(ORB_FUNCTION_NAME, PointerApi::kRightUp);
}

void WindowsPointerInjector::send(const char* function, std::uint32_t flags, std::int32_t dx,
                                  std::int32_t dy) {
    if (const PointerApi::Error error = mApi.sendInput({dx, dy, 0, flags, 0, 0}))
        ORB_LOG_TEXT(kLogError, "%s() Unable to inject mouse input event. Error: %d", function,
                     static_cast<int>(error));
}

} // namespace orbelantine
