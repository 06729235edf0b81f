#pragma once

#include <functional>
#include <memory>

namespace orbelantine {

class IBluetoothImpl;

/// Makes a backend, not started yet.
using BluetoothMaker = std::function<std::unique_ptr<IBluetoothImpl>()>;

/// The platform's own backend: the Windows Bluetooth API, or BlueZ. Not started yet; it may be
/// destroyed while it runs. Throws std::system_error if there can be no thread.
[[nodiscard]] std::unique_ptr<IBluetoothImpl> makeBluetooth();

} // namespace orbelantine
