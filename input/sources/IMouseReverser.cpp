#include "input/sources/IMouseReverser.h"

#include "core/common/OSAL.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IMouseReverser, IMouseReverser::Dummy, "IMouseReverser::Dummy", IClock&);

void IMouseReverser::Dummy::applyMove(std::int32_t& /*dx*/, std::int32_t& /*dy*/,
                                      const std::int64_t& /*timeNs*/) {}

void IMouseReverser::Dummy::reverse(std::int32_t& /*dx*/, std::int32_t& /*dy*/) {}

} // namespace orbelantine
