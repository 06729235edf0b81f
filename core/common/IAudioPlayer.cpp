#include "core/common/IAudioPlayer.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IAudioPlayer, IAudioPlayer::Dummy, "IAudioPlayer::Dummy");

error_code IAudioPlayer::Dummy::start() {
    ORB_TRACED();
    return {};
}

void IAudioPlayer::Dummy::stop() {
    ORB_TRACED();
}

} // namespace orbelantine
