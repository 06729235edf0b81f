#include "input/sources/IRemoteMouseInfoProvider.h"

#include "core/common/OSAL.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IRemoteMouseInfoProvider, IRemoteMouseInfoProvider::Dummy,
                  "IRemoteMouseInfoProvider::Dummy");

void IRemoteMouseInfoProvider::Dummy::start(Callback /*callback*/) {}

void IRemoteMouseInfoProvider::Dummy::stop(Callback /*callback*/) {}

} // namespace orbelantine
