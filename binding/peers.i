// Remote devices, their callback families, and what connects to one.

%feature("director") orbelantine::IBluetoothService;

// A host may keep the peer that it is given for as long as its connect takes.
%typemap(directorin) orbelantine::BluetoothPeer const &
%{ $input = new boost::shared_ptr< orbelantine::BluetoothPeer const >(boost::make_shared< orbelantine::BluetoothPeer >($1)); %}

namespace orbelantine {

class BluetoothPeer {
public:
  BluetoothPeer(const std::wstring &name);
  BluetoothPeer(orbelantine::CMacAddress const &address);
  BluetoothPeer(orbelantine::CMacAddress const &address, const std::wstring &name, uint32_t deviceClass, bool paired);
  virtual ~BluetoothPeer();
  orbelantine::CMacAddress address();
  std::wstring name();
  uint32_t deviceClass();
  int32_t deviceType();
  bool isPaired();
  void update(const std::wstring &name, uint32_t deviceClass, bool paired);
  void touch();
  void markStale();
  bool isStale();
};

class IBluetoothService {
public:
  virtual ~IBluetoothService();
  virtual void connect(orbelantine::BluetoothPeer const &peer, boost::function< void (boost::system::error_code) > completion) = 0;
  virtual void disconnect(boost::function< void (boost::system::error_code) > completion) = 0;
  virtual void forceDisconnect(boost::function< void (boost::system::error_code) > completion);
  virtual void dispatchOnDisconnected(boost::system::error_code code);
  %immutable;
  boost::signals2::signal< void (boost::system::error_code) > onDisconnected;
  boost::signals2::signal< void (boost::system::error_code) > onEventError;
  %mutable;
};

}

// Written out again in the wrappers, like the names of callbacks.i.
typedef boost::shared_ptr< orbelantine::BluetoothPeer > sharedPeer;
typedef std::vector< boost::shared_ptr< orbelantine::BluetoothPeer > > vectorPeer;

%template(BluetoothPeerVector) std::vector< boost::shared_ptr< orbelantine::BluetoothPeer > >;

%include "binding/callbacks/CallbackTableBluetooth.inc"

// What is asked at the wrong time, or where it would wait for itself, is the host's exception.
%exception %{
  try { $action }
  catch (const std::exception &e) {
    SWIG_CSharpSetPendingException(SWIG_CSharpInvalidOperationException, e.what());
    return $null;
  }
%}

namespace orbelantine {

class BluetoothPeerManager {
public:
  BluetoothPeerManager();
  virtual ~BluetoothPeerManager();
  void start(bool registerIncoming);
  void stop();
  void refreshPeers();
  bool isBluetoothOn();
  std::wstring getLocalName();
  orbelantine::CMacAddress getLocalAddress();
  int32_t getHidDriverVersion();
  boost::system::error_code verifyHidDriverVersion();
  boost::system::error_code verifyHandsfreeDriverVersion();
  boost::system::error_code enableDiscoverable();
  boost::system::error_code disableDiscoverable();
  void enablePeerScans(bool enable);
  void startDiscovery();
  void stopDiscovery();
  void pairPeer(boost::shared_ptr< orbelantine::BluetoothPeer > const &peer);
  void authPair(boost::shared_ptr< orbelantine::BluetoothPeer > const &peer);
  void cancelPair();
  void unpair(boost::shared_ptr< orbelantine::BluetoothPeer > const &peer);
  std::vector< boost::shared_ptr< orbelantine::BluetoothPeer > > getPeers();
  %immutable;
  boost::signals2::signal< void (boost::system::error_code) > onStarted;
  boost::signals2::signal< void (bool, vectorPeer) > onPeersUpdated;
  boost::signals2::signal< void (sharedPeer) > onPairRequest;
  boost::signals2::signal< void (sharedPeer) > onPairedByUser;
  boost::signals2::signal< void (sharedPeer, boost::system::error_code) > onPairFinished;
  boost::signals2::signal< void (sharedPeer, boost::system::error_code) > onUnpairFinished;
  %mutable;
};

}

%exception;
