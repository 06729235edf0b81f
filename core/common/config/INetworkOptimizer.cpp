#include "core/common/config/INetworkOptimizer.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(INetworkOptimizer, INetworkOptimizer::Dummy, "INetworkOptimizer::Dummy");

void INetworkOptimizer::Dummy::start() {
    ORB_TRACED();
}

void INetworkOptimizer::Dummy::stop() {
    ORB_TRACED();
}

} // namespace orbelantine
