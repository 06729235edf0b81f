#pragma once

#include "bluetooth/BluetoothPeer.h"
#include "core/common/errors/ErrorCode.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <string>

namespace orbelantine {

using PeerPointer = boost::shared_ptr<BluetoothPeer>;

/// What may happen to the list of peers. An event that a state doesn't override is logged and
/// dropped.
class BluetoothState {
  public:
    BluetoothState() = default;
    virtual ~BluetoothState() = default;
    BluetoothState(const BluetoothState&) = delete;
    BluetoothState& operator=(const BluetoothState&) = delete;

    virtual void refreshPeers();
    /// True.
    [[nodiscard]] virtual bool isBluetoothOn();
    /// generic::kFunctionNotSupported.
    /// @{
    [[nodiscard]] virtual error_code enableDiscoverable();
    [[nodiscard]] virtual error_code disableDiscoverable();
    /// @}
    virtual void startDiscovery();
    virtual void stopDiscovery();
    /// An inquiry has ended.
    virtual void discoverOnce();
    /// A rescan has ended.
    virtual void schedulePeerScan();
    virtual void enablePeerScans(bool enable);
    virtual void pair(const PeerPointer& peer);
    /// The peer asks.
    virtual void pairRequest(const PeerPointer& peer);
    /// Outside this flow.
    virtual void pairedByUser(const PeerPointer& peer);
    virtual void authPair(const PeerPointer& peer);
    virtual void pairFinished(const PeerPointer& peer, error_code ec);
    virtual void cancelPair();
    virtual void unpair(const PeerPointer& peer);
    virtual void unpairFinished(const PeerPointer& peer, error_code ec);
    [[nodiscard]] virtual std::string getName() const = 0;

  private:
    void onNotProcessed(const char* event) const;
};

} // namespace orbelantine
