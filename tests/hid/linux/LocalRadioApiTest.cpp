#include "hid/channel/LocalRadioApi.h"

#include "hid/channel/WindowsBluetoothHIDDeviceClient.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>

namespace orbelantine {
namespace {

TEST(LinuxLocalRadioApi, ComputerNameIsTheHostsAndMustFit) {
    std::array<char, 256> host{};
    ASSERT_EQ(gethostname(host.data(), host.size()), 0);
    const std::string expected(host.data());
    std::array<wchar_t, 1024> name{};
    std::uint32_t size = 1024;
    ASSERT_EQ(LocalRadioApi::system().getComputerName(name.data(), size), 0u);
    EXPECT_EQ(std::wstring(name.data()), std::wstring(expected.begin(), expected.end()));
    EXPECT_EQ(size, expected.size());
    EXPECT_NE(LocalRadioApi::system().getComputerName(name.data(), size), 0u);
}

TEST(LinuxLocalRadioApi, MachineHasNoRadioToName) {
    WindowsBluetoothHIDDeviceClient client;
    std::wstring name = L"before";
    EXPECT_EQ(client.getType(), 2u);
    EXPECT_FALSE(client.setLocalDeviceName("Desk"));
    EXPECT_FALSE(client.getRadioDeviceName(name));
    EXPECT_EQ(name, L"before");
}

} // namespace
} // namespace orbelantine
