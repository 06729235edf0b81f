#include "core/common/config/OSALTable.h"

namespace orbelantine {

namespace {

constexpr OSALTableRow kTable[] = {
    {"default", "IPerfManager", "IPerfManager::Dummy"},
    {"default", "IInputSource", "GenericInputSource"},
    {"default", "IInputTarget", "InputTargetHID"},
    {"default", "HIDMediaReportConverter", "HIDMediaReportConverter"},
    {"default", "IHIDKeyTranslator", "WindowsHIDKeyTranslator"},
    {"default", "IBluetoothHIDDeviceClient", "WindowsBluetoothHIDDeviceClient"},
    {"default", "IBluetoothHIDClient", "BluetoothHIDClient"},
    {"default", "IHIDDeviceClient", "HIDDeviceClient"},
    {"default", "IBluetoothSDPController", "IBluetoothSDPController::Dummy"},
    {"default", "IMouseSource", "RelativeMouseSource"},
    {"default", "KeyboardSource", "KeyboardSource"},
    {"default", "ISystemOp", "WindowsSystemOp"},
    {"default", "IVideoSource", "WindowsVideoSource"},
    {"default", "IVideoConverter", "KessaHWVideoConverter"},
    {"default", "IVideoEncoder", "KessaHWVideoEncoder"},
    {"default", "IVideoDecoder", "FFMPEGVideoDecoder"},
    {"default", "IVideoRenderer", "WindowsVideoRenderer"},
    {"default", "IAudioPlayer", "IAudioPlayer::Dummy"},
    {"default", "IBandwidthManager", "BandwidthManager"},
    {"default", "IDepacketizer", "WfdDepacketizer"},
    {"default", "IPacketizer", "WfdRtpPacketizer"},
    {"default", "ISocketMediaTarget", "UdpSocketMediaTarget"},
    {"default", "ISocketMediaSource", "UdpSocketMediaSource"},
    {"default", "INetworkStateProvider", "NetworkStateProvider"},
    {"default", "ISettingsStorage", "LarkSettingsStorage"},
    {"default", "IWifiDirectClient", "WifiDirectClient"},
    {"default", "IWifiUtil", "WifiUtil"},
    {"default", "INetworkOptimizer", "NetworkOptimizer"},
    {"default", "INetworkInterfaceMonitor", "NetworkInterfaceMonitor"},
    {"default", "IIPCServer", "WindowsPipeIPCServer"},
    {"default", "IIPCEndpoint", "WindowsPipeIPCEndpoint"},
    {"default", "IPointerInjector", "WindowsPointerInjector"},
    {"android", "IIpInterfaceLinkVerifier", "IpInterfaceLinkTcpRmiVerifier"},
    {"android", "IRemoteMouseInfoProvider", "RmiCursorServer"},
    {"android", "IMouseReverser", "AndroidMouseReverser"},
    {"ios", "IIpInterfaceLinkVerifier", "SwigIpInterfaceLinkVerifier"},
    {"ios", "IRemoteMouseInfoProvider", "SwigRemoteMouseInfoProvider"},
    {"ios", "IMouseReverser", "IMouseReverser::Dummy"},
    {"absolute_mouse", "IMouseSource", "AbsoluteMouseSource"},
    {"input_pipeline:generic", "IInputSource", "GenericInputSource"},
    {"dx1", "IVideoSource", "IddVideoSource"},
    {"dx1", "IVideoEncoder", "DXTEncoder"},
    {"dx1", "IVideoDecoder", "DXTRenderer"},
    {"dx1", "IVideoConverter", "IVideoConverter::PassThrough"},
    {"dx1", "IVideoRenderer", "IVideoRenderer::PassThrough"},
    {"dx1", "ISocketMediaSource", "SerializableVideoSocketSource"},
    {"dx1", "ISocketMediaTarget", "SerializableVideoSocketTarget"},
    {"dx1", "IDepacketizer", "IDepacketizer::PassThrough"},
    {"dx1", "IPacketizer", "IPacketizer::PassThrough"},
    {"shared", "IVideoRenderer", "SharedTextureVideoRenderer"},
    {"generic_tcp", "IDepacketizer", "SerializableToDepacketized"},
    {"generic_tcp", "IPacketizer", "RawToSerializablePacketizer"},
    {"generic_tcp", "ISocketMediaSource", "SerializableVideoSocketSource"},
    {"generic_tcp", "ISocketMediaTarget", "SerializableVideoSocketTarget"},
    {"generic_tcp_legacy", "IDepacketizer", "SerializableToDepacketized"},
    {"generic_tcp_legacy", "IPacketizer", "RawToSerializablePacketizer"},
    {"generic_tcp_legacy", "ISocketMediaSource", "SerializableVideoSocketSourceLegacy"},
    {"generic_tcp_legacy", "ISocketMediaTarget", "SerializableVideoSocketTargetLegacy"},
};

} // namespace

std::span<const OSALTableRow> osalTable() {
    return kTable;
}

} // namespace orbelantine
