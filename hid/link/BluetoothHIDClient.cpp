#include "hid/link/BluetoothHIDClient.h"

#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "hid/channel/IBluetoothHIDDeviceClient.h"
#include "hid/channel/IHIDDeviceClient.h"
#include "hid/reports/HIDMediaReportConverter.h"
#include "hid/reports/HIDReport.h"
#include "hid/reports/HIDReportState.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IBluetoothHIDClient, BluetoothHIDClient, "BluetoothHIDClient");

namespace {

template <class Interface>
boost::shared_ptr<Interface> create(const char* interfaceName, const KVStore& configuration) {
    return osalCreate<Interface>(OSALFactory::instance(), interfaceName, configuration, "");
}

} // namespace

BluetoothHIDClient::BluetoothHIDClient(const KVStore& configuration)
    : mState(boost::make_shared<HIDReportState>())
    , mDeviceClient(create<IBluetoothHIDDeviceClient>("IBluetoothHIDDeviceClient", configuration))
    , mConverter(create<HIDMediaReportConverter>("HIDMediaReportConverter", configuration))
    , mDevice(create<IHIDDeviceClient>("IHIDDeviceClient", configuration)) {
    mDevice->onDisconnected.connect([this](error_code ec) {
        ORB_LOG(kLogDebug, "%s() onDisconnected");
        onDisconnected(ec);
    });
}

BluetoothHIDClient::~BluetoothHIDClient() = default;

void BluetoothHIDClient::onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) {
    HIDReport report;
    if (mConverter->convertToReport(buffer, mDeviceClient->getType(), *mState, report))
        mDevice->sendReport(report.data, report.size);
    else
        ORB_LOG(kLogError, "%s() error parsing event.");
}

void BluetoothHIDClient::disconnect() {
    mDevice->disconnect();
    mState = boost::make_shared<HIDReportState>();
}

error_code BluetoothHIDClient::connect(const std::string& address) {
    return mDevice->connect(address);
}

void BluetoothHIDClient::forceDisconnect() {
    mDevice->forceDisconnect();
}

bool BluetoothHIDClient::isConnected() {
    return mDevice->isConnected();
}

error_code BluetoothHIDClient::virtualCableUnplug() {
    return mDevice->virtualCableUnplug();
}

} // namespace orbelantine
