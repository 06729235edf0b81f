// The link to a phone as a whole, and the service record that makes the computer a HID device.

%feature("director") orbelantine::IBluetoothSDPController;

namespace orbelantine {

class IBluetoothSDPController {
public:
  virtual ~IBluetoothSDPController();
  virtual int32_t start() = 0;
  virtual int32_t stop() = 0;
  virtual int32_t addHIDDeviceRecord(const std::string &serviceName, const std::string &serviceDescription, const std::string &providerName, uint16_t subclass, const uint8_t *descriptor, uint32_t size) = 0;
  virtual int32_t removeHIDDeviceRecord() = 0;
};

class HidInputClient : public orbelantine::IBluetoothService {
public:
  HidInputClient(orbelantine::KVStore const &configuration);
  void connect(orbelantine::BluetoothPeer const &peer, boost::function< void (boost::system::error_code) > completion);
  void disconnect(boost::function< void (boost::system::error_code) > completion);
  void forceDisconnect(boost::function< void (boost::system::error_code) > completion);
  void setIdleTimeout(uint64_t milliseconds);
  void pauseConnection();
  void resumeConnection();
  void setHidRemoteSdpRefresh(bool refresh);
  void setInputContext(boost::shared_ptr< orbelantine::IInputContext > const &context);
  %extend {
%proxycode %{
  public void flush(ErrorCodeCallback completion) {
    orbelantine_flush(swigCPtr, ErrorCodeCallback.getCPtr(completion));
  }

  [global::System.Runtime.InteropServices.DllImport("$dllimport")]
  private static extern void orbelantine_flush(global::System.Runtime.InteropServices.HandleRef client, global::System.Runtime.InteropServices.HandleRef completion);
%}
  }
  %immutable;
  boost::signals2::signal< void (boost::system::error_code) > onHidSdpRefresh;
  boost::signals2::signal< void () > onConnected;
  %mutable;
};

}

%wrapper %{
// Outside the scheme: completes once what was raised before has gone out.
extern "C" SWIGEXPORT void SWIGSTDCALL
orbelantine_flush(const boost::shared_ptr< orbelantine::HidInputClient > *client,
                  const boost::function< void (boost::system::error_code) > *completion) {
  (*client)->flush(orbelantine::binding::completionOf(completion));
}
%}
