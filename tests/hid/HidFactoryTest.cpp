#include "core/common/OSAL.h"
#include "hid/channel/HIDDeviceClient.h"
#include "hid/channel/IBluetoothHIDDeviceClientDummy.h"
#include "hid/channel/IHIDDeviceClientDummy.h"
#include "hid/channel/WindowsBluetoothHIDDeviceClient.h"
#include "hid/link/BluetoothHIDClient.h"
#include "hid/link/IBluetoothHIDClientDummy.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

template <class Interface>
boost::shared_ptr<Interface> made(const char* name, const std::string& hint) {
    return osalCreate<Interface>(OSALFactory::instance(), name, KVStore(), hint);
}

template <class Real, class Interface>
void expectRealAndDummy(const char* name) {
    EXPECT_NE(dynamic_cast<Real*>(made<Interface>(name, "").get()), nullptr) << name;
    const auto dummy = made<Interface>(name, std::string(name) + "::Dummy");
    EXPECT_NE(dynamic_cast<typename Interface::Dummy*>(dummy.get()), nullptr) << name;
}

TEST(HidFactory, GivesTheRealClientsAndTheirDummiesByName) {
    expectRealAndDummy<HIDDeviceClient, IHIDDeviceClient>("IHIDDeviceClient");
    expectRealAndDummy<BluetoothHIDClient, IBluetoothHIDClient>("IBluetoothHIDClient");
    expectRealAndDummy<WindowsBluetoothHIDDeviceClient, IBluetoothHIDDeviceClient>(
        "IBluetoothHIDDeviceClient");
}

TEST(HidFactory, DummiesSucceedAndAreNeverConnected) {
    IHIDDeviceClient::Dummy device;
    IBluetoothHIDClient::Dummy client;
    IBluetoothHIDDeviceClient::Dummy stack;
    EXPECT_EQ(device.connect(""), error_code());
    EXPECT_EQ(client.connect(""), error_code());
    EXPECT_FALSE(device.isConnected() || client.isConnected());
    EXPECT_EQ(stack.getType(), 0u);
    EXPECT_TRUE(stack.setLocalDeviceName("Desk"));
}

} // namespace
} // namespace orbelantine
