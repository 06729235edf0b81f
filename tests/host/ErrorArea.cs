namespace Orbelantine.HostTests
{
    /// <summary>One area of the error numbering.</summary>
    public struct ErrorArea
    {
        public string Name;
        public int First;
        public string FirstName;
        /// <summary>The value of the marker behind the area's last error.</summary>
        public int AfterLast;

        public static readonly ErrorArea[] All =
        {
            new ErrorArea { Name = "OrbelantineErrorsStart", First = 20001, FirstName = "First", AfterLast = 20002 },
            new ErrorArea { Name = "ServiceErrors", First = 20001, FirstName = "AlreadyConnected", AfterLast = 20010 },
            new ErrorArea { Name = "SmsErrors", First = 20010, FirstName = "InvalidParameter", AfterLast = 20018 },
            new ErrorArea { Name = "IosErrors", First = 20020, FirstName = "AppLostForeground", AfterLast = 20049 },
            new ErrorArea { Name = "PhonebookErrors", First = 20070, FirstName = "InvalidParameter", AfterLast = 20077 },
            new ErrorArea { Name = "SdpAttributeErrors", First = 20100, FirstName = "AttributeNotFound", AfterLast = 20105 },
            new ErrorArea { Name = "ObexErrors", First = 20120, FirstName = "ServiceDiscoveryFailed", AfterLast = 20127 },
            new ErrorArea { Name = "DriverErrors", First = 20150, FirstName = "AlreadyOpen", AfterLast = 20161 },
            new ErrorArea { Name = "HandsfreeErrors", First = 20200, FirstName = "StartTranscriptionFailure", AfterLast = 20206 },
            new ErrorArea { Name = "AudioDeviceErrors", First = 20220, FirstName = "NoRecordingDevices", AfterLast = 20236 },
            new ErrorArea { Name = "AudioMixerErrors", First = 20240, FirstName = "NoAudioInDevice", AfterLast = 20246 },
            new ErrorArea { Name = "ControlSocketErrors", First = 20270, FirstName = "AlreadyStarted", AfterLast = 20273 },
            new ErrorArea { Name = "IoDeviceErrors", First = 20290, FirstName = "AlreadyStreaming", AfterLast = 20295 },
            new ErrorArea { Name = "IoDeviceRequestErrors", First = 20320, FirstName = "AlreadyConnected", AfterLast = 20324 },
            new ErrorArea { Name = "VoiceRecognitionErrors", First = 20350, FirstName = "SiriNotAvailable", AfterLast = 20352 },
            new ErrorArea { Name = "WifiDirectErrors", First = 20400, FirstName = "InvalidArg", AfterLast = 20423 },
            new ErrorArea { Name = "LinkManagerErrors", First = 20450, FirstName = "LinkManagerInvalidState", AfterLast = 20459 },
            new ErrorArea { Name = "P2pLinkErrors", First = 20500, FirstName = "P2pInvalidState", AfterLast = 20520 },
            new ErrorArea { Name = "IpLinkErrors", First = 20550, FirstName = "IpLinkInvalidState", AfterLast = 20557 },
            new ErrorArea { Name = "WifiUtilErrors", First = 20600, FirstName = "InvalidHandle", AfterLast = 20604 },
            new ErrorArea { Name = "NetworkInterfaceMonitorErrors", First = 20630, FirstName = "InvalidState", AfterLast = 20633 },
            new ErrorArea { Name = "RStreamErrors", First = 20700, FirstName = "ErrorStartingUnreliableStream", AfterLast = 20705 },
            new ErrorArea { Name = "IpcErrors", First = 20800, FirstName = "ConnectionAborted", AfterLast = 20807 },
            new ErrorArea { Name = "RmiErrors", First = 20900, FirstName = "ParsingFailure", AfterLast = 20914 },
            new ErrorArea { Name = "RmiTransportErrors", First = 20940, FirstName = "SocketFailure", AfterLast = 20942 },
            new ErrorArea { Name = "RmiUwpErrors", First = 20960, FirstName = "AppServiceConnectionFailed", AfterLast = 20965 },
            new ErrorArea { Name = "RmiEncryptionErrors", First = 20980, FirstName = "InvalidIvs", AfterLast = 20981 },
            new ErrorArea { Name = "GenericInputSourceErrors", First = 21100, FirstName = "InputRegistrationFailure", AfterLast = 21102 },
            new ErrorArea { Name = "HidErrors", First = 21120, FirstName = "InvalidState", AfterLast = 21128 },
            new ErrorArea { Name = "SinkClientErrors", First = 21200, FirstName = "LinkNotConnected", AfterLast = 21211 },
            new ErrorArea { Name = "SourceServerErrors", First = 21230, FirstName = "InvalidUserState", AfterLast = 21247 },
            new ErrorArea { Name = "VideoErrors", First = 21260, FirstName = "NoPermission", AfterLast = 21268 },
            new ErrorArea { Name = "RemoteRenderErrors", First = 21280, FirstName = "ErrorDeserializingData", AfterLast = 21282 },
            new ErrorArea { Name = "UibcErrors", First = 21300, FirstName = "PeerDisconnected", AfterLast = 21308 },
            new ErrorArea { Name = "BandwidthManagementErrors", First = 21320, FirstName = "SocketMediaTargetNotReady", AfterLast = 21328 },
            new ErrorArea { Name = "RtspErrors", First = 21340, FirstName = "BadState", AfterLast = 21348 },
            new ErrorArea { Name = "ConnectivityManagerErrors", First = 21400, FirstName = "InvalidState", AfterLast = 21404 },
            new ErrorArea { Name = "AppConnectivityErrors", First = 21430, FirstName = "IncompatibleApp", AfterLast = 21433 },
            new ErrorArea { Name = "AndroidAppsErrors", First = 21460, FirstName = "AppLaunchFailed", AfterLast = 21465 },
            new ErrorArea { Name = "HotspotErrors", First = 21500, FirstName = "UnableToStartHotspot", AfterLast = 21501 },
            new ErrorArea { Name = "AppSmsErrors", First = 21520, FirstName = "AppSmsSendAirplaneMode", AfterLast = 21530 },
            new ErrorArea { Name = "ShareServiceErrors", First = 21550, FirstName = "InvalidUploadToken", AfterLast = 21560 },
            new ErrorArea { Name = "UiFacadeErrors", First = 21600, FirstName = "DataUninitialized", AfterLast = 21603 },
            new ErrorArea { Name = "GeneralErrors", First = 21700, FirstName = "UnknownException", AfterLast = 21701 },
            new ErrorArea { Name = "RendererErrors", First = 21800, FirstName = "InitFailed", AfterLast = 21802 },
            new ErrorArea { Name = "ConnectivityErrors", First = 21820, FirstName = "PeerIsNotInBtPeerList", AfterLast = 21822 },
            new ErrorArea { Name = "TunnelingManagerErrors", First = 21840, FirstName = "LinkUnavailable", AfterLast = 21843 },
            new ErrorArea { Name = "BeamingManagerErrors", First = 21880, FirstName = "SessionNotConnected", AfterLast = 21888 },
            new ErrorArea { Name = "AVStackErrors", First = 21920, FirstName = "RtpNetworkFailure", AfterLast = 21921 },
            new ErrorArea { Name = "AVSinkSessionErrors", First = 21950, FirstName = "InvalidParams", AfterLast = 21960 },
            new ErrorArea { Name = "MediaServiceErrors", First = 22000, FirstName = "StorageNotAvailable", AfterLast = 22018 },
            new ErrorArea { Name = "InputServiceErrors", First = 22030, FirstName = "NoInputFocus", AfterLast = 22032 },
            new ErrorArea { Name = "PairingErrors", First = 22050, FirstName = "PairingFailed", AfterLast = 22056 },
            new ErrorArea { Name = "ProtocolErrors", First = 22080, FirstName = "UNINITIALIZED", AfterLast = 22088 },
            new ErrorArea { Name = "IoErrors", First = 22100, FirstName = "FileNotFound", AfterLast = 22104 },
            new ErrorArea { Name = "SettingsErrors", First = 22150, FirstName = "SettingDoesNotExist", AfterLast = 22153 },
            new ErrorArea { Name = "OrbelantineErrorsEnd", First = 25000, FirstName = "Last", AfterLast = 25001 },
        };
    }
}
