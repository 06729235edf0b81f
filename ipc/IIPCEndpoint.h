#pragma once

#include "core/common/errors/ErrorCode.h"

#include <string>

namespace orbelantine {

/// One end of a channel of messages between two processes of one user. One thread reads while
/// another writes; close, from any thread, ends both.
class IIPCEndpoint {
  public:
    class Dummy;

    virtual ~IIPCEndpoint() = default;

    /// Blocks until the server of that name has taken this end, or close ended the attempt.
    virtual void connect(const std::string& name, error_code& ec) = 0;
    virtual void close(error_code& ec) = 0;
    /// Blocks until all is written. With a size below 1 nothing happens, and `ec` stays.
    virtual void write(const void* data, int size, error_code& ec) = 0;
    /// Blocks until some of a message has come: the number of its bytes, or 0 with `ec` set. What
    /// of a message doesn't fit comes with the next call.
    [[nodiscard]] virtual int readSome(void* buffer, int size, error_code& ec) = 0;
};

/// An end that leads nowhere.
class IIPCEndpoint::Dummy final : public IIPCEndpoint {
  public:
    void connect(const std::string&, error_code&) override {}

    void close(error_code&) override {}

    void write(const void*, int, error_code&) override {}

    [[nodiscard]] int readSome(void*, int, error_code&) override { return 0; }
};

} // namespace orbelantine
