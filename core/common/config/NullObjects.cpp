#include "core/common/config/NullObjects.h"

#include "core/common/OSAL.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IAudioPlayer, IAudioPlayer::Dummy, "IAudioPlayer::Dummy");
ORB_OSAL_REGISTER(IOsapiAcceptor, IOsapiAcceptor::Dummy, "IOsapiAcceptor::Dummy");
ORB_OSAL_REGISTER(IOsapiSocket, IOsapiSocket::Dummy, "IOsapiSocket::Dummy");
ORB_OSAL_REGISTER(IPerfManager, IPerfManager::Dummy, "IPerfManager::Dummy");

} // namespace orbelantine
