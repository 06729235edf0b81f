// The direct way to a HID device, and the packer of the older report format.

%feature("director") orbelantine::HIDEventsPacker;
%feature("director") orbelantine::IHIDReportProvider;
%feature("director") orbelantine::HIDReportProvider;

// A report has bytes, at an address that the host vouches for.
%typemap(csin, pre="    if ($csinput == global::System.IntPtr.Zero && size > 0)\n      throw new global::System.ArgumentNullException(\"$csinput\", \"A report needs an address.\");")
    const uint8_t *data "$csinput"

namespace orbelantine {

%nodefaultctor IHIDDeviceClient;
class IHIDDeviceClient {
public:
  virtual ~IHIDDeviceClient();
  virtual boost::system::error_code connect(const std::string &address) = 0;
  virtual void disconnect() = 0;
  virtual void forceDisconnect() = 0;
  virtual bool isConnected() = 0;
  virtual void sendReport(const uint8_t *data, size_t size) = 0;
  virtual boost::system::error_code virtualCableUnplug() = 0;
  %immutable;
  boost::signals2::signal< void (boost::system::error_code) > onDisconnected;
  %mutable;
};

%csmethodmodifiers HIDDeviceClient::onDisconnected "public new";
class HIDDeviceClient : public orbelantine::IHIDDeviceClient {
public:
  HIDDeviceClient();
  boost::system::error_code connect(const std::string &address);
  void disconnect();
  void forceDisconnect();
  bool isConnected();
  void sendReport(const uint8_t *data, size_t size);
  boost::system::error_code virtualCableUnplug();
  %immutable;
  boost::signals2::signal< void (boost::system::error_code) > onDisconnected;
  %mutable;
};

class HIDEventsPacker : public orbelantine::IMediaElement {
public:
  HIDEventsPacker(orbelantine::KVStore const &configuration, bool includeBtCode = true);
  virtual void start();
  virtual void stop();
  virtual void registerTarget(boost::shared_ptr< orbelantine::IMediaElement > const &target);
  virtual void onFrame(boost::shared_ptr< orbelantine::IMediaBuffer > const &buffer);
};

class IHIDReportProvider {
public:
  virtual ~IHIDReportProvider();
  virtual void setDevice(boost::shared_ptr< orbelantine::IHIDDeviceClient > const &device) = 0;
  virtual void sendMouseMove(int32_t x, int32_t y) = 0;
  virtual void sendMouseScroll(int32_t amount) = 0;
  virtual void sendMouseLeftClick(bool pressed) = 0;
  virtual void sendMouseRightClick(bool pressed) = 0;
  virtual void sendKey(uint8_t scanCode, bool pressed) = 0;
  virtual void resetState() = 0;
  virtual void dispatchReport(boost::shared_ptr< orbelantine::IMediaBuffer > const &buffer) = 0;
};

class HIDReportProvider : public orbelantine::IHIDReportProvider {
public:
  HIDReportProvider(orbelantine::KVStore const &configuration);
  virtual void setDevice(boost::shared_ptr< orbelantine::IHIDDeviceClient > const &device);
  virtual void sendMouseMove(int32_t x, int32_t y);
  virtual void sendMouseScroll(int32_t amount);
  virtual void sendMouseLeftClick(bool pressed);
  virtual void sendMouseRightClick(bool pressed);
  virtual void sendKey(uint8_t scanCode, bool pressed);
  virtual void resetState();
  virtual void dispatchReport(boost::shared_ptr< orbelantine::IMediaBuffer > const &buffer);
};

}
