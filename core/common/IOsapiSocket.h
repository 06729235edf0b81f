#pragma once

#include "core/common/errors/ErrorCode.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace orbelantine {

/// A stream to another computer. Calls block.
class IOsapiSocket {
  public:
    class Dummy;

    virtual ~IOsapiSocket() = default;
    [[nodiscard]] virtual error_code connect(const std::string& host, std::uint16_t port) = 0;
    /// Sends all bytes or fails.
    [[nodiscard]] virtual error_code send(const std::uint8_t* data, std::size_t size) = 0;
    virtual void close() = 0;
};

/// Connects to nothing and swallows what is sent.
class IOsapiSocket::Dummy final : public IOsapiSocket {
  public:
    [[nodiscard]] error_code connect(const std::string& host, std::uint16_t port) override;
    [[nodiscard]] error_code send(const std::uint8_t* data, std::size_t size) override;
    void close() override;
};

} // namespace orbelantine
