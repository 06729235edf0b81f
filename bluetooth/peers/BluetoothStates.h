#pragma once

#include "bluetooth/peers/BluetoothStateMachine.h"

namespace orbelantine {

/// A state whose entry and exit are traced under its own name.
class TracedBluetoothState : public BluetoothStateMachine::State {
  public:
    using State::State;

    void onEnter() final;
    void onExit() final;

  private:
    virtual void enter() = 0;

    virtual void leave() {}
};

/// Brings the backend up.
class BluetoothStateStart final : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStateStart"; }

  private:
    void enter() override;
};

/// What the states that discover or wait have in common: each takes what begins a pairing.
class AcceptingBluetoothState : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

    void pair(const PeerPointer& peer) override;
    void pairRequest(const PeerPointer& peer) override;
    void unpair(const PeerPointer& peer) override;
};

/// Waits, and reads the known peers from time to time.
class BluetoothStateIdle final : public AcceptingBluetoothState {
  public:
    using AcceptingBluetoothState::AcceptingBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStateIdle"; }

    void refreshPeers() override;
    [[nodiscard]] error_code enableDiscoverable() override;
    [[nodiscard]] error_code disableDiscoverable() override;
    void startDiscovery() override;
    void schedulePeerScan() override;
    void enablePeerScans(bool enable) override;

  private:
    void enter() override;
    void leave() override;
};

/// Inquires again and again.
class BluetoothStateDiscovery final : public AcceptingBluetoothState {
  public:
    using AcceptingBluetoothState::AcceptingBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStateDiscovery"; }

    void stopDiscovery() override;
    void discoverOnce() override;

  private:
    void enter() override;
};

/// A state that fails when its time is up.
class TimedBluetoothState : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

  protected:
    /// Goes on with what the beginning has given: time to wait for, or the reason of a failure.
    void waitUnless(error_code failed);
    void cancelTimer();

  private:
    boost::shared_ptr<IDelayTimer> mTimer;
};

/// Asked a peer to pair, and waits for the request that comes of it.
class BluetoothStatePair final : public TimedBluetoothState {
  public:
    using TimedBluetoothState::TimedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStatePair"; }

    void pairRequest(const PeerPointer& peer) override;
    void cancelPair() override;

  private:
    void enter() override;
    void leave() override;
};

/// A peer has asked to be paired, which the host decides unless it has asked the peer itself.
class BluetoothStatePairRequest final : public TimedBluetoothState {
  public:
    using TimedBluetoothState::TimedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStatePairRequest"; }

    void pairedByUser(const PeerPointer& peer) override;
    void authPair(const PeerPointer& peer) override;
    void pairFinished(const PeerPointer& peer, error_code ec) override;
    void cancelPair() override;

  private:
    void enter() override;
    void leave() override;
};

class BluetoothStatePairCompleted final : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStatePairCompleted"; }

  private:
    void enter() override;
};

class BluetoothStatePairFailed final : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStatePairFailed"; }

  private:
    void enter() override;
};

class BluetoothStateUnpair final : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStateUnpair"; }

    void unpairFinished(const PeerPointer& peer, error_code ec) override;

  private:
    void enter() override;
};

class BluetoothStateUnpairCompleted final : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStateUnpairCompleted"; }

  private:
    void enter() override;
};

class BluetoothStateUnpairFailed final : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStateUnpairFailed"; }

  private:
    void enter() override;
};

/// The end: takes nothing any more.
class BluetoothStateFini final : public TracedBluetoothState {
  public:
    using TracedBluetoothState::TracedBluetoothState;

    [[nodiscard]] std::string getName() const override { return "BluetoothStateFini"; }

  private:
    void enter() override;
};

} // namespace orbelantine
