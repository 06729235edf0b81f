#include "core/common/IOsapiAcceptor.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IOsapiAcceptor, IOsapiAcceptor::Dummy, "IOsapiAcceptor::Dummy");

error_code IOsapiAcceptor::Dummy::start(std::uint16_t /*port*/, const Accepted& /*accepted*/) {
    ORB_TRACED();
    return {};
}

void IOsapiAcceptor::Dummy::stop() {
    ORB_TRACED();
}

} // namespace orbelantine
