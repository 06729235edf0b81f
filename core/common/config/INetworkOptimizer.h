#pragma once

namespace orbelantine {

/// Keeps the computer's network adapters from work that disturbs a low-latency link.
class INetworkOptimizer {
  public:
    class Dummy;

    virtual ~INetworkOptimizer() = default;
    /// Takes effect until stop, or until the object goes away.
    virtual void start() = 0;
    virtual void stop() = 0;
};

/// Leaves the adapters alone.
class INetworkOptimizer::Dummy final : public INetworkOptimizer {
  public:
    void start() override;
    void stop() override;
};

} // namespace orbelantine
