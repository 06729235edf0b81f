#include "core/common/IOsapiSocket.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IOsapiSocket, IOsapiSocket::Dummy, "IOsapiSocket::Dummy");

error_code IOsapiSocket::Dummy::connect(const std::string& /*host*/, std::uint16_t /*port*/) {
    ORB_TRACED();
    return {};
}

error_code IOsapiSocket::Dummy::send(const std::uint8_t* /*data*/, std::size_t /*size*/) {
    return {};
}

void IOsapiSocket::Dummy::close() {
    ORB_TRACED();
}

} // namespace orbelantine
