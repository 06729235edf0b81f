#include "core/common/IPerfManager.h"

#include "core/common/OSAL.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IPerfManager, IPerfManager::Dummy, "IPerfManager::Dummy");

void IPerfManager::Dummy::begin(const char* /*span*/) {}

void IPerfManager::Dummy::end(const char* /*span*/) {}

} // namespace orbelantine
