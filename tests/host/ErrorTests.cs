using System;
using System.Linq;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class ErrorTests
    {
        // Each area of the numbering: its first error, and the marker behind its last one.
        private static readonly string[] Areas =
        {
            "OrbelantineErrorsStart 20001 First 20002",
            "ServiceErrors 20001 AlreadyConnected 20010",
            "SmsErrors 20010 InvalidParameter 20018",
            "IosErrors 20020 AppLostForeground 20049",
            "PhonebookErrors 20070 InvalidParameter 20077",
            "SdpAttributeErrors 20100 AttributeNotFound 20105",
            "ObexErrors 20120 ServiceDiscoveryFailed 20127",
            "DriverErrors 20150 AlreadyOpen 20161",
            "HandsfreeErrors 20200 StartTranscriptionFailure 20206",
            "AudioDeviceErrors 20220 NoRecordingDevices 20236",
            "AudioMixerErrors 20240 NoAudioInDevice 20246",
            "ControlSocketErrors 20270 AlreadyStarted 20273",
            "IoDeviceErrors 20290 AlreadyStreaming 20295",
            "IoDeviceRequestErrors 20320 AlreadyConnected 20324",
            "VoiceRecognitionErrors 20350 SiriNotAvailable 20352",
            "WifiDirectErrors 20400 InvalidArg 20423",
            "LinkManagerErrors 20450 LinkManagerInvalidState 20459",
            "P2pLinkErrors 20500 P2pInvalidState 20520",
            "IpLinkErrors 20550 IpLinkInvalidState 20557",
            "WifiUtilErrors 20600 InvalidHandle 20604",
            "NetworkInterfaceMonitorErrors 20630 InvalidState 20633",
            "RStreamErrors 20700 ErrorStartingUnreliableStream 20705",
            "IpcErrors 20800 ConnectionAborted 20807",
            "RmiErrors 20900 ParsingFailure 20914",
            "RmiTransportErrors 20940 SocketFailure 20942",
            "RmiUwpErrors 20960 AppServiceConnectionFailed 20965",
            "RmiEncryptionErrors 20980 InvalidIvs 20981",
            "GenericInputSourceErrors 21100 InputRegistrationFailure 21102",
            "HidErrors 21120 InvalidState 21128",
            "SinkClientErrors 21200 LinkNotConnected 21211",
            "SourceServerErrors 21230 InvalidUserState 21247",
            "VideoErrors 21260 NoPermission 21268",
            "RemoteRenderErrors 21280 ErrorDeserializingData 21282",
            "UibcErrors 21300 PeerDisconnected 21308",
            "BandwidthManagementErrors 21320 SocketMediaTargetNotReady 21328",
            "RtspErrors 21340 BadState 21348",
            "ConnectivityManagerErrors 21400 InvalidState 21404",
            "AppConnectivityErrors 21430 IncompatibleApp 21433",
            "AndroidAppsErrors 21460 AppLaunchFailed 21465",
            "HotspotErrors 21500 UnableToStartHotspot 21501",
            "AppSmsErrors 21520 AppSmsSendAirplaneMode 21530",
            "ShareServiceErrors 21550 InvalidUploadToken 21560",
            "UiFacadeErrors 21600 DataUninitialized 21603",
            "GeneralErrors 21700 UnknownException 21701",
            "RendererErrors 21800 InitFailed 21802",
            "ConnectivityErrors 21820 PeerIsNotInBtPeerList 21822",
            "TunnelingManagerErrors 21840 LinkUnavailable 21843",
            "BeamingManagerErrors 21880 SessionNotConnected 21888",
            "AVStackErrors 21920 RtpNetworkFailure 21921",
            "AVSinkSessionErrors 21950 InvalidParams 21960",
            "MediaServiceErrors 22000 StorageNotAvailable 22018",
            "InputServiceErrors 22030 NoInputFocus 22032",
            "PairingErrors 22050 PairingFailed 22056",
            "ProtocolErrors 22080 UNINITIALIZED 22088",
            "IoErrors 22100 FileNotFound 22104",
            "SettingsErrors 22150 SettingDoesNotExist 22153",
            "OrbelantineErrorsEnd 25000 Last 25001",
        };

        [Test]
        public void ThereIsAProxyForEachArea()
        {
            var proxies = from type in typeof(error_code).Assembly.GetTypes()
                          where type.Namespace == "Orbelantine.Swig.common" && type.GetMethod("getErrorCode") != null
                          orderby type.Name
                          select type.Name;
            Assert.Sequence(Areas.Select(area => area.Split(' ')[0]).OrderBy(name => name), proxies);
        }

        [Test]
        public void EachAreaTellsItsNumbersAndTheirTexts()
        {
            Assert.Equal(20000, Common.ORB_ERROR_BASE);
            foreach (string[] row in Areas.Select(area => area.Split(' ')))
            {
                Type proxy = typeof(error_code).Assembly.GetType("Orbelantine.Swig.common." + row[0], true);
                using ((IDisposable)Activator.CreateInstance(proxy))
                    ExpectCode(proxy, "Success", 0, "Success");
                ExpectCode(proxy, row[2], int.Parse(row[1]), "Error code - " + row[2]);
                ExpectCode(proxy, "AfterLast", int.Parse(row[3]), "Error code - AfterLast");
            }
        }

        [Test]
        public void TheHostsOwnCategoryMakesCodesAndTheirTexts()
        {
            using (error_code code = Common.GlobalCategory.error_code(-7))
            {
                Assert.Equal(-7, code.value());
                Assert.Equal("Swig Error: -7", code.message());
            }
            using (var category = new SwigErrorCategory())
            using (var code = new error_code(8, category))
            {
                Assert.Equal("Swig Error: 8", code.message());
                Assert.Equal("SwigErrorCategory", category.name());
                Assert.Equal("Swig Error: 2147483647", category.message(int.MaxValue));
            }
        }

        [Test]
        public void ACategoryIsReachedThroughItsBase()
        {
            using (var category = new SwigErrorCategory())
            {
                IntPtr handle = Common.error_category_SWIGUpcast(Raw.Handle<error_category>(category));
                Assert.Equal("SwigErrorCategory", Raw.CallText("common", "error_category_name", handle));
                Assert.Equal("Swig Error: 3", Raw.CallText("common", "error_category_message", handle, 3));
            }
        }

        private static void ExpectCode(Type proxy, string name, int number, string text)
        {
            string what = proxy.Name + "." + name;
            Assert.Equal(number, (int)Enum.Parse(proxy.GetNestedType("Code"), name), what);
            using (var code = (error_code)proxy.GetMethod("getErrorCode").Invoke(null, new object[] { number }))
            {
                Assert.Equal(number, code.value(), what);
                Assert.Equal("'Category: struct orbelantine::" + proxy.Name + ", Message: " + text + "'", code.message());
            }
        }
    }
}
