#include "core/common/probes/WindowsSystemOp.h"

#include "core/common/OSAL.h"

namespace orbelantine::windows_osal {

ORB_OSAL_REGISTER(ISystemOp, WindowsSystemOp, "WindowsSystemOp");

void WindowsSystemOp::start() {}

void WindowsSystemOp::stop() {}

int WindowsSystemOp::status() {
    return -1;
}

} // namespace orbelantine::windows_osal
