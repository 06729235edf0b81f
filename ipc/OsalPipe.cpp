#include "ipc/OsalPipe.h"

#include "core/common/log/Log.h"

namespace orbelantine {

void initOsalPipe() {
    ORB_TRACED();
}

} // namespace orbelantine
