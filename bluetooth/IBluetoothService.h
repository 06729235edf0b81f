#pragma once

#include "core/common/errors/ErrorCode.h"
#include "core/common/run/Completion.h"

#include <boost/signals2/signal.hpp>

namespace orbelantine {

class BluetoothPeer;

/// Something that connects to a peer on the host's behalf. Open to the host's own implementations.
class IBluetoothService {
  public:
    boost::signals2::signal<void(boost::system::error_code)> onDisconnected;
    boost::signals2::signal<void(boost::system::error_code)> onEventError;

    virtual ~IBluetoothService() = default;
    /// The peer is not kept beyond the call.
    virtual void connect(const BluetoothPeer& peer, Completion completion) = 0;
    virtual void disconnect(Completion completion) = 0;
    /// Breaks off what can't be waited for. By default nothing is done, which succeeds at once.
    virtual void forceDisconnect(Completion completion);
    /// Raises onDisconnected.
    virtual void dispatchOnDisconnected(error_code ec);
};

} // namespace orbelantine
