#include "bluetooth/radio/BluetoothApi.h"
#include "bluetooth/radio/BluetoothWindows.h"
#include "bluetooth/radio/ServiceLookup.h"
#include "bluetooth/radio/makeBluetooth.h"
#include "core/common/errors/ApiCategory.h"
#include "core/common/errors/GenericError.h"

#include <gtest/gtest.h>

#include <future>

namespace orbelantine {
namespace {

// What Wine answers to the calls that it has: it knows of no Bluetooth. docs/windows-under-wine.md
// lists those that it lacks.
constexpr BluetoothApi::Error kCallNotImplemented = 120;

TEST(WindowsBluetoothApi,
     MachineWithoutBluetoothRefusesAndLeavesTheHandlesAloneAndHasNoTrayWindow) {
    BluetoothApi& api = BluetoothApi::system();
    BluetoothApi::Handle search = 77;
    BluetoothApi::Handle radio = 78;
    EXPECT_EQ(api.bluetoothFindFirstRadio({}, search, radio), kCallNotImplemented);
    EXPECT_EQ(api.lastError(), kCallNotImplemented);
    BluetoothApi::DeviceInfo device;
    EXPECT_EQ(api.bluetoothFindFirstDevice({}, device, search), kCallNotImplemented);
    EXPECT_EQ(search, 77);
    EXPECT_EQ(radio, 78);
    BluetoothApi::RadioInfo info;
    EXPECT_EQ(api.bluetoothGetRadioInfo(BluetoothApi::kNull, info), kCallNotImplemented);
    EXPECT_FALSE(api.bluetoothFindNextDevice(BluetoothApi::kNull, device));
    EXPECT_EQ(api.lastError(), kCallNotImplemented);
    EXPECT_EQ(api.findWindow(L"BluetoothNotificationAreaIconWindowClass"), BluetoothApi::kNull);
    EXPECT_NE(api.postMessage(0x7FFF1234, BluetoothApi::kWmCommand, 2142, 0), 0u);
}

TEST(WindowsBluetoothApi, BackendOfThePlatformSearchesOnIt) {
    const auto backend = makeBluetooth();
    EXPECT_TRUE(backend->isBluetoothOn()) << "only a missing radio counts as off";
    EXPECT_EQ(backend->getHidDriverVersion(), -1);
    ASSERT_EQ(backend->start(false), error_code());
    std::promise<error_code> searched;
    backend->rescanCachedPeers([&](error_code ec) { searched.set_value(ec); });
    EXPECT_EQ(searched.get_future().get(), genericError(kCallNotImplemented));
}

TEST(WindowsNameSpaceApi, LookupWithoutAProviderFailsUnderTheNameOfTheCall) {
    std::promise<error_code> result;
    ServiceLookup lookup;
    lookup.start(CMacAddress(L"00:1A:7D:DA:71:13"), {0x1124, 0, 0x1000, {}},
                 [&](error_code ec, const auto&...) { result.set_value(ec); });
    EXPECT_EQ(result.get_future().get(),
              error_code(8, apiCategory("BluetoothServiceLookup:WSALookupServiceBegin")));
    NameSpaceApi& api = NameSpaceApi::system();
    NameSpaceApi::QuerySet query{};
    query.size = sizeof(query);
    std::uint32_t size = sizeof(query);
    EXPECT_EQ(api.wsaLookupServiceNext(1, 0x9FF0, size, &query), NameSpaceApi::kFailure);
    EXPECT_EQ(api.wsaGetLastError(), static_cast<NameSpaceApi::Error>(win32::kWsaNoMore));
}

TEST(WindowsNameSpaceApi, PublicationIsAcceptedAndGivesNoHandle) {
    EXPECT_EQ(publishBluetoothService({0x35, 0}), NameSpaceApi::kNull);
    EXPECT_EQ(withdrawBluetoothService(1), 0);
}

} // namespace
} // namespace orbelantine
