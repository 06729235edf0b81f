#include "core/common/INetworkOptimizer.h"

#include "core/common/Log.h"
#include "core/common/OSAL.h"

namespace orbelantine {

ORB_OSAL_REGISTER(INetworkOptimizer, INetworkOptimizer::Dummy, "INetworkOptimizer::Dummy");

void INetworkOptimizer::Dummy::start() {
    ORB_TRACED();
}

void INetworkOptimizer::Dummy::stop() {
    ORB_TRACED();
}

} // namespace orbelantine
