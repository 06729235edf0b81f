#include "tests/bluetooth/linux/BlueZTest.h"

#include <sdbus-c++/sdbus-c++.h>

namespace orbelantine::test {

namespace {

using BlueZRadioTest = BlueZTest;
using Peers = std::vector<Peer>;

} // namespace

TEST_F(BlueZRadioTest, NameAndAddressAreThoseOfTheFirstAdapter) {
    stack->addAdapter({.name = "hci1", .address = "00:AA:00:00:00:01", .alias = "Second"});
    EXPECT_EQ(backend->getLocalName(), L"");
    EXPECT_TRUE(backend->getLocalAddress().isEmpty());
    start();
    EXPECT_TRUE(backend->isBluetoothOn());
    EXPECT_EQ(backend->getLocalName(), L"Virtual computer");
    EXPECT_EQ(backend->getLocalAddress().getStdStringAddress(), L"00:AA:01:02:03:04");
    stack->removeAdapter();
    EXPECT_TRUE(comesTrue([&] { return backend->getLocalName() == L"Second"; }));
    stack->removeAdapter("hci1");
    EXPECT_TRUE(comesTrue([&] { return !backend->isBluetoothOn(); }));
    EXPECT_EQ(backend->getLocalName(), L"Second") << "as last read";
}

TEST_F(BlueZRadioTest, RescanReportsOnceWhatTheStackKnows) {
    stack->addDevice({.address = kPhone, .name = "Ph\xC3\xB6ne", .paired = true});
    stack->addDevice({.address = kOther, .name = "Mouse", .deviceClass = 0x2580, .trusted = true});
    stack->addDevice({.address = "AA:BB:CC:00:00:03", .name = "Stranger"});
    start();
    EXPECT_EQ(rescan(), 0);
    EXPECT_EQ(found.take(), (Peers{{L"AA:BB:CC:00:00:01", L"Ph\u00F6ne", kPhoneClass},
                                   {L"AA:BB:CC:00:00:02", L"Mouse", 0x2580}}));
    stack->removeDevice(kOther);
    stack->addDevice({.address = kPhone, .name = "Renamed", .connected = true});
    EXPECT_TRUE(comesTrue([&] {
        found.take();
        return rescan() == 0 &&
               found.take() == Peers{{L"AA:BB:CC:00:00:01", L"Renamed", kPhoneClass}};
    }));
}

TEST_F(BlueZRadioTest, NothingCanBeDoneWhileTheRadioIsOff) {
    const auto everythingIsDown = [this] {
        Outcome inquiry;
        backend->discoverOnce(inquiry.completion(), 3);
        EXPECT_EQ(inquiry.value(), generic::kNetworkDown);
        EXPECT_EQ(rescan(), generic::kNetworkDown);
        EXPECT_EQ(run(&BlueZBackend::pair, kPhone), generic::kNetworkDown);
        EXPECT_EQ(run(&BlueZBackend::unpair, kPhone), generic::kNetworkDown);
        EXPECT_EQ(run(&BlueZBackend::authRemote, kPhone), generic::kNetworkDown);
        EXPECT_EQ(backend->enableDiscoverable().value(), generic::kNetworkDown);
        EXPECT_EQ(backend->disableDiscoverable().value(), generic::kNetworkDown);
        EXPECT_FALSE(backend->isBluetoothOn());
        EXPECT_FALSE(backend->isDiscoverable());
    };
    stack->addDevice(knownPhone());
    stack->power(false);
    start();
    everythingIsDown();
    stack->power(true);
    EXPECT_TRUE(comesTrue([&] { return backend->isBluetoothOn(); }));
    EXPECT_EQ(rescan(), 0);
    stack->removeAdapter();
    EXPECT_TRUE(comesTrue([&] { return !backend->isBluetoothOn(); }));
    everythingIsDown();
}

TEST_F(BlueZRadioTest, DiscoverabilityLastsUntilItIsTakenBack) {
    start();
    EXPECT_FALSE(backend->isDiscoverable());
    EXPECT_EQ(backend->enableDiscoverable().value(), 0);
    EXPECT_TRUE(backend->isDiscoverable());
    const auto client = sdbus::createSessionBusConnectionWithAddress(bus.address());
    const auto adapter = sdbus::createProxy(*client, "org.bluez", "/org/bluez/hci0");
    const auto value = [&](const char* name) {
        return sdbus::Variant(adapter->getProperty(name).onInterface("org.bluez.Adapter1"));
    };
    EXPECT_TRUE(value("Discoverable").get<bool>());
    EXPECT_EQ(value("DiscoverableTimeout").get<std::uint32_t>(), 0U);
    EXPECT_EQ(backend->disableDiscoverable().value(), 0);
    EXPECT_FALSE(backend->isDiscoverable());
    EXPECT_FALSE(value("Discoverable").get<bool>());
}

TEST_F(BlueZRadioTest, InquiryReportsOnceWhatItHasHeardWhenItsTimeIsOverAndTheNextOneFollows) {
    stack->addDevice({.address = kPhone, .name = "Phone"});
    stack->addDevice({.address = kOther, .name = "Away", .paired = true, .inRange = false});
    start();
    Outcome outcome = inquire();
    Outcome next;
    backend->discoverOnce(next.completion(), 1);
    EXPECT_EQ(stack->seen().filters.at(0).at("Transport").get<std::string>(), "bredr");
    clock.advance(kInquiry - std::chrono::nanoseconds(1));
    EXPECT_EQ(rescan(), 0);
    found.take();
    EXPECT_FALSE(outcome.isThere());
    stack->addDevice({.address = kPhone, .name = "Phone", .inRange = false});
    clock.advance(std::chrono::nanoseconds(1));
    EXPECT_EQ(outcome.value(), 0);
    EXPECT_EQ(found.take(), (Peers{{L"AA:BB:CC:00:00:01", L"Phone", kPhoneClass}}));
    EXPECT_EQ(clock.timers.await(2).back(), std::chrono::milliseconds(1280));
    clock.advance(kInquiry);
    EXPECT_EQ(next.value(), 0);
    EXPECT_EQ(found.take(), Peers{}) << "what the last one heard is forgotten";
    EXPECT_EQ(stack->seen().count("StopDiscovery"), 2U);
    EXPECT_TRUE(stack->seen().discoverers.empty());
}

TEST_F(BlueZRadioTest, InquiryEndsWithItsAdapter) {
    const auto endsWith = [this](const auto& endAdapter) {
        Outcome outcome = inquire();
        Outcome next;
        backend->discoverOnce(next.completion(), 3);
        endAdapter();
        EXPECT_EQ(outcome.value(), generic::kNetworkDown);
        EXPECT_EQ(next.value(), generic::kNetworkDown);
        clock.timers.take();
    };
    start();
    endsWith([this] { stack->power(false); });
    stack->power(true);
    EXPECT_TRUE(comesTrue([&] { return backend->isBluetoothOn(); }));
    endsWith([this] { stack->removeAdapter(); });
    clock.advance(kInquiry);
    EXPECT_EQ(rescan(), generic::kNetworkDown);
}

TEST_F(BlueZRadioTest, TenThousandSignalsKeepNobodyWaiting) {
    for (const char* address : {kPhone, kOther})
        stack->addDevice({.address = address, .name = "Phone"});
    start();
    Outcome outcome = inquire();
    stack->simulateSignals(5000);
    clock.advance(kInquiry);
    EXPECT_EQ(outcome.value(), 0);
    EXPECT_EQ(found.take().size(), 2U);
}

TEST_F(BlueZRadioTest, SignalsOfOthersThanBlueZAreIgnored) {
    start();
    const auto client = sdbus::createSessionBusConnectionWithAddress(bus.address());
    Outcome inquiry = inquire();
    const std::string victim = stack->seen().discoverers.at(0);
    const auto send = [&](const char* path, const char* interface, const char* name,
                          const auto&... values) {
        auto signal = sdbus::createObject(*client, path)->createSignal(interface, name);
        (signal << ... << values);
        signal.setDestination(victim);
        signal.send();
    };
    send("/org/bluez/hci0", "org.freedesktop.DBus.Properties", "PropertiesChanged",
         "org.bluez.Adapter1",
         std::map<std::string, sdbus::Variant>{{"Powered", sdbus::Variant(false)}},
         std::vector<std::string>{});
    constexpr const char* kDaemonPath = "/org/freedesktop/DBus";
    send(kDaemonPath, "org.freedesktop.DBus", "NameOwnerChanged", "org.bluez", ":1.0", "");
    send(kDaemonPath, "org.freedesktop.DBus", "NameOwnerChanged", std::int32_t{1});
    // The bus has delivered them when it has answered a later call.
    static_cast<void>(sdbus::createProxy(*client, "org.bluez", "/org/bluez/hci0")
                          ->getProperty("Powered")
                          .onInterface("org.bluez.Adapter1"));
    EXPECT_EQ(backend->enableDiscoverable().value(), 0);
    EXPECT_EQ(rescan(), 0);
    clock.advance(kInquiry);
    EXPECT_EQ(inquiry.value(), 0);
}

} // namespace orbelantine::test
