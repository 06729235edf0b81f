#include "core/common/probes/NetworkOptimizer.h"

#include "core/common/OSAL.h"

namespace orbelantine {

ORB_OSAL_REGISTER(INetworkOptimizer, NetworkOptimizer, "NetworkOptimizer");

NetworkOptimizer::NetworkOptimizer()
    : NetworkOptimizer(WlanApi::system()) {}

} // namespace orbelantine
