#pragma once

#include "core/common/errors/ErrorCode.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <string>

namespace orbelantine {

class IIPCEndpoint;

/// The listening end of a name. It lives for one create.
class IIPCServer {
  public:
    class Dummy;

    virtual ~IIPCServer() = default;

    /// Takes the name down; nobody can connect before accept.
    virtual void create(const std::string& name, error_code& ec) = 0;
    /// Blocks until a peer has connected, or close, from another thread, ended the wait. Null with
    /// `ec` set where it failed; `ec` stays where it succeeded.
    [[nodiscard]] virtual boost::shared_ptr<IIPCEndpoint> accept(error_code& ec) = 0;
    /// Ends a waiting accept; the ends that were handed out stay.
    virtual void close() = 0;
};

/// A server to whom nobody comes.
class IIPCServer::Dummy final : public IIPCServer {
  public:
    void create(const std::string&, error_code&) override {}

    [[nodiscard]] boost::shared_ptr<IIPCEndpoint> accept(error_code&) override { return {}; }

    void close() override {}
};

} // namespace orbelantine
