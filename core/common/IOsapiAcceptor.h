#pragma once

#include "core/common/IOsapiSocket.h"
#include "core/common/errors/ErrorCode.h"

#include <boost/function.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>

namespace orbelantine {

/// Waits for other computers to connect.
class IOsapiAcceptor {
  public:
    class Dummy;

    using Accepted = boost::function<void(boost::shared_ptr<IOsapiSocket>)>;

    virtual ~IOsapiAcceptor() = default;
    /// `accepted` is called for each connection until stop, on the acceptor's own thread.
    [[nodiscard]] virtual error_code start(std::uint16_t port, const Accepted& accepted) = 0;
    virtual void stop() = 0;
};

/// Starts with success; nobody ever connects.
class IOsapiAcceptor::Dummy final : public IOsapiAcceptor {
  public:
    [[nodiscard]] error_code start(std::uint16_t port, const Accepted& accepted) override;
    void stop() override;
};

} // namespace orbelantine
