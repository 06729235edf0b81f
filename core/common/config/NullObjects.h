#pragma once

namespace orbelantine {

// Interfaces that other programs implement, whose null objects are all that this library has.

/// Plays a phone's audio on the computer.
class IAudioPlayer {
  public:
    class Dummy;
    virtual ~IAudioPlayer() = default;
};

/// A socket as the system knows it.
class INativeSocket {
  public:
    class Dummy;
    virtual ~INativeSocket() = default;
};

/// Waits for other computers to connect.
class IOsapiAcceptor {
  public:
    class Dummy;
    virtual ~IOsapiAcceptor() = default;
};

/// A stream to another computer.
class IOsapiSocket {
  public:
    class Dummy;
    virtual ~IOsapiSocket() = default;
};

/// Takes note of how long work lasts.
class IPerfManager {
  public:
    class Dummy;
    virtual ~IPerfManager() = default;
};

class IAudioPlayer::Dummy final : public IAudioPlayer {};

class INativeSocket::Dummy final : public INativeSocket {};

class IOsapiAcceptor::Dummy final : public IOsapiAcceptor {};

class IOsapiSocket::Dummy final : public IOsapiSocket {};

class IPerfManager::Dummy final : public IPerfManager {};

} // namespace orbelantine
