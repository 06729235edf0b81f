#include "input/pointer/PointerApi.h"

#include <windows.h>

namespace orbelantine {

namespace {

static_assert(PointerApi::kMove == MOUSEEVENTF_MOVE);
static_assert(PointerApi::kLeftDown == MOUSEEVENTF_LEFTDOWN);
static_assert(PointerApi::kLeftUp == MOUSEEVENTF_LEFTUP);
static_assert(PointerApi::kRightDown == MOUSEEVENTF_RIGHTDOWN);
static_assert(PointerApi::kRightUp == MOUSEEVENTF_RIGHTUP);

class Win32PointerApi final : public PointerApi {
  public:
    Error sendInput(const MouseInput& input) override {
        INPUT native{};
        native.type = INPUT_MOUSE;
        native.mi = {input.dx, input.dy, input.mouseData, input.flags, input.time, input.extraInfo};
        return SendInput(1, &native, sizeof(native)) != 0 ? ERROR_SUCCESS : GetLastError();
    }
};

} // namespace

PointerApi& PointerApi::system() {
    static Win32PointerApi api;
    return api;
}

} // namespace orbelantine
