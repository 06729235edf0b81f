#include "avstack/VideoElements.h"
#include "core/common/OSAL.h"
#include "core/common/config/OSALTable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace orbelantine::test {
namespace {

// A look-up would not tell: it finds what a row names, registered or not.
bool isRegistered(const OSALFactory& factory, const char* implementation) {
    try {
        return factory.retrieveFactory(implementation, implementation) != nullptr;
    } catch (const Exception&) {
        return false;
    }
}

TEST(FactoryTable, RowsAreServedByThisLibraryOrBelongToPrograms) {
    // Of video, networks and settings, which other programs link.
    const std::set<std::string> elsewhere = {
        "BandwidthManager",
        "DXTEncoder",
        "DXTRenderer",
        "FFMPEGVideoDecoder",
        "IddVideoSource",
        "InputTargetHID",
        "IpInterfaceLinkTcpRmiVerifier",
        "KessaHWVideoConverter",
        "KessaHWVideoEncoder",
        "LarkSettingsStorage",
        "NetworkInterfaceMonitor",
        "NetworkStateProvider",
        "RawToSerializablePacketizer",
        "RmiCursorServer",
        "SerializableToDepacketized",
        "SerializableVideoSocketSource",
        "SerializableVideoSocketSourceLegacy",
        "SerializableVideoSocketTarget",
        "SerializableVideoSocketTargetLegacy",
        "SharedTextureVideoRenderer",
        "SwigIpInterfaceLinkVerifier",
        "SwigRemoteMouseInfoProvider",
        "UdpSocketMediaSource",
        "UdpSocketMediaTarget",
        "WfdDepacketizer",
        "WfdRtpPacketizer",
        "WifiDirectClient",
        "WifiUtil",
        "WindowsVideoRenderer",
        "WindowsVideoSource",
    };
    const OSALFactory factory;
    std::set<std::string> absent;
    for (const OSALTableRow& row : osalTable())
        if (!isRegistered(factory, row.implementation))
            absent.insert(row.implementation);
    EXPECT_EQ(absent, elsewhere);
}

TEST(FactoryTable, NullObjectsServeWhatTheTableDoesNotName) {
    const OSALFactory factory;
    for (const char* const name :
         {"IBluetoothSDPController", "IMouseReverser", "INetworkOptimizer", "IOsapiAcceptor",
          "IOsapiSocket", "IPerfManager", "IAudioPlayer", "IBluetoothHIDClient"})
        EXPECT_NE(factory.retrieveFactory(std::string(name) + "::Dummy", ""), nullptr) << name;
}

TEST(FactoryTable, VideoStepsThatAreLeftOutHandOnWhatTheyGet) {
    OSALFactory factory;
    const auto packetizer = osalCreate<IPacketizer>(factory, "IPacketizer", KVStore(), "dx1");
    EXPECT_EQ(packetizer->getName(), "IPacketizer::PassThrough");
    const auto target = boost::make_shared<IMediaElement::Dummy>();
    packetizer->registerTarget(target);
    EXPECT_EQ(boost::dynamic_pointer_cast<IPacketizer::PassThrough>(packetizer)->getTarget(),
              target);
}

} // namespace
} // namespace orbelantine::test
