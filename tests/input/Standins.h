#pragma once

#include "hid/channel/IBluetoothHIDDeviceClient.h"
#include "input/sources/IMouseSource.h"
#include "tests/input/RecordingTarget.h"
#include "tests/support/FactoryOverride.h"

#include <map>
#include <sstream>
#include <string>

namespace orbelantine::test {

/// By name, each with up to four numbers.
using Events = std::map<std::string, std::function<void(int, int, int, int)>>;

/// Raises the events of a script such as "move 3 4, refresh, button 0 1 3 4".
inline void perform(const std::string& script, const Events& events) {
    std::istringstream parts(script);
    for (std::string event; std::getline(parts >> std::ws, event, ',');) {
        std::istringstream words(event);
        std::string what;
        int values[4] = {};
        words >> what >> values[0] >> values[1] >> values[2] >> values[3];
        events.at(what)(values[0], values[1], values[2], values[3]);
    }
}

/// Writes down its calls, one after the other.
class FakeMouseSource : public IMouseSource {
  public:
    std::string calls;
    bool absolute = false;

    virtual ~FakeMouseSource() = default;

    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override {
        record("registerTarget", dynamic_cast<test::RecordingTarget*>(target.get()) != nullptr);
    }

    void start(const boost::shared_ptr<IInputContext>& context) override {
        record("start", context != nullptr);
    }

    void stop() override { record("stop"); }

    bool isAbsolute() override { return absolute; }

    void killFocus() override { record("killFocus"); }

    void mouseMove(int x, int y, int id) override { record("mouseMove", x, y, id); }

    void mouseLButton(bool down, int x, int y, int id, bool reconnect) override {
        record("mouseLButton", down, x, y, id, reconnect);
    }

    void mouseRButton(bool down, int x, int y, bool reconnect) override {
        record("mouseRButton", down, x, y, reconnect);
    }

    void touchMove(int x, int y, int id) override { record("touchMove", x, y, id); }

    void touch(bool down, int x, int y, int id, bool reconnect) override {
        record("touch", down, x, y, id, reconnect);
    }

    void rawMouseMove(int dx, int dy) override { record("rawMouseMove", dx, dy); }

    void mouseWheel(bool up, int x, int y, int amount) override {
        record("mouseWheel", up, x, y, amount);
    }

  private:
    template <class... Values>
    void record(const char* call, Values... values) {
        std::ostringstream text;
        text << (calls.empty() ? "" : ", ") << call;
        ((text << ' ' << values), ...);
        calls += text.str();
    }
};

class FakeHidDevice : public IBluetoothHIDDeviceClient {
  public:
    explicit FakeHidDevice(std::uint32_t type)
        : mType(type) {}

    virtual ~FakeHidDevice() = default;

    std::uint32_t getType() override { return mType; }

    bool setLocalDeviceName(const std::string&) override { return true; }

    void restoreLocalDeviceName() override {}

  private:
    std::uint32_t mType;
};

/// The factory's HID device, of that type as long as the result lives.
inline auto hidDeviceOfType(std::uint32_t type) {
    return FactoryOverride<IBluetoothHIDDeviceClient>("WindowsBluetoothHIDDeviceClient",
                                                      boost::make_shared<FakeHidDevice>(type));
}

} // namespace orbelantine::test
