#pragma once

#include <cstdint>

namespace orbelantine {

/// A socket as the system knows it, for calls that take one.
class INativeSocket {
  public:
    class Dummy;

    static constexpr std::intptr_t kInvalidHandle = -1;

    virtual ~INativeSocket() = default;
    /// Stays the object's own; kInvalidHandle once closed.
    [[nodiscard]] virtual std::intptr_t nativeHandle() const = 0;
    virtual void close() = 0;
};

/// A socket that is closed from the start.
class INativeSocket::Dummy final : public INativeSocket {
  public:
    [[nodiscard]] std::intptr_t nativeHandle() const override { return kInvalidHandle; }

    void close() override {}
};

} // namespace orbelantine
