#pragma once

#include "core/common/errors/ErrorCode.h"
#include "core/common/run/Completion.h"
#include "core/common/types/CMacAddress.h"

#include <boost/signals2/signal.hpp>

#include <cstdint>
#include <string>

namespace orbelantine {

/// The platform's Bluetooth stack. Completions run on the backend's own I/O thread, and none comes
/// once stop() has returned; the signals may fire on any thread.
class IBluetoothImpl {
  public:
    /// Address, friendly name, Class of Device.
    using PeerSignal =
        boost::signals2::signal<void(const CMacAddress&, const std::wstring&, unsigned long)>;

    /// Once for every device that any search returns.
    PeerSignal onPeerFound;
    /// Once for every peer that asks to be paired.
    PeerSignal onAuthenticationRequest;

    virtual ~IBluetoothImpl() = default;
    /// `registerIncoming` also subscribes to peers that ask to be paired.
    [[nodiscard]] virtual error_code start(bool registerIncoming) = 0;
    virtual void stop() = 0;
    /// The local radio's, as last read.
    [[nodiscard]] virtual std::wstring getLocalName() = 0;
    [[nodiscard]] virtual CMacAddress getLocalAddress() = 0;
    /// Success if the driver is of the version that this library expects.
    [[nodiscard]] virtual error_code verifyHidDriverVersion() = 0;
    [[nodiscard]] virtual error_code verifyHandsfreeDriverVersion() = 0;
    /// -1 when it can't be read.
    [[nodiscard]] virtual std::int32_t getHidDriverVersion() = 0;
    [[nodiscard]] virtual error_code enableDiscoverable() = 0;
    [[nodiscard]] virtual error_code disableDiscoverable() = 0;
    [[nodiscard]] virtual bool isDiscoverable() = 0;
    [[nodiscard]] virtual bool isBluetoothOn() = 0;
    /// A search among the devices that the stack knows.
    virtual void rescanCachedPeers(Completion completion) = 0;
    /// An inquiry; the multiplier sets its length.
    virtual void discoverOnce(Completion completion, std::uint16_t timeoutMultiplier) = 0;
    virtual void pair(const CMacAddress& address, Completion completion) = 0;
    /// Agrees to the pairing that this peer last asked for.
    virtual void authRemote(const CMacAddress& address, Completion completion) = 0;
    virtual void unpair(const CMacAddress& address, Completion completion) = 0;
};

} // namespace orbelantine
