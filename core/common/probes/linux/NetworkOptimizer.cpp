#include "core/common/OSAL.h"
#include "core/common/config/INetworkOptimizer.h"

namespace orbelantine {

// Linux leaves its adapters' scans to the service that manages them.
ORB_OSAL_REGISTER(INetworkOptimizer, INetworkOptimizer::Dummy, "NetworkOptimizer");

} // namespace orbelantine
