#pragma once

#include "tools/virtual_stack/linux/BusObject.h"
#include "tools/virtual_stack/linux/Pairing.h"
#include "tools/virtual_stack/linux/Settings.h"
#include "tools/virtual_stack/linux/Surroundings.h"

#include <functional>
#include <memory>
#include <string>

namespace orbelantine::stack {

/// A device near the computer, or one that the computer knows. It is an object on the bus once an
/// inquiry has found it, and as long as it is paired, trusted or connected.
class RemoteDevice {
  public:
    /// `isPowered` is the adapter's, whose object's path is `adapterPath`.
    RemoteDevice(Surroundings& surroundings, std::string adapterPath,
                 std::function<bool()> isPowered, DeviceSettings settings);
    RemoteDevice(const RemoteDevice&) = delete;
    RemoteDevice& operator=(const RemoteDevice&) = delete;
    ~RemoteDevice();

    [[nodiscard]] const DeviceSettings& settings() const { return mSettings; }

    [[nodiscard]] std::string path() const;
    [[nodiscard]] bool isKnown() const;

    [[nodiscard]] bool isObject() const { return mObject != nullptr; }

    void change(const DeviceSettings& settings);

    /// Becomes an object, if it can be and isn't one.
    void appear();
    /// Is an object no longer; a pairing that is open fails.
    void disappear();
    /// With the radio off, or the bus gone.
    void disconnect();
    /// Forgets all that the computer knew.
    void unpair();

    /// An inquiry finds it, if it can be found.
    void sight();
    void loseSight() const;
    /// Tells of its signal's strength so many times.
    void signal(unsigned times) const;

    void ask(Asking kind);
    void cancel();
    void forgetClient(const std::string& client);

  private:
    void addMethods();
    void write(const std::string& name, const Value& value);
    void pair(const std::string& client, sdbus::Result<>&& result);
    void checkPair() const;
    void setLink(bool connected);
    void beginPairing(Asking kind, Decision decision);
    void endPairing();
    void agree(Asking kind);
    void update();

    Surroundings& mSurroundings;
    const std::string mAdapterPath;
    const std::function<bool()> mIsPowered;
    DeviceSettings mSettings;
    std::string mAlias;
    std::unique_ptr<BusObject> mObject;
    std::unique_ptr<Pairing> mPairing;
};

} // namespace orbelantine::stack
