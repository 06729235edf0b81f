#include "tools/virtual_stack/linux/RemoteDevice.h"

#include <algorithm>
#include <utility>

namespace orbelantine::stack {

namespace {

constexpr const char* kDeviceInterface = "org.bluez.Device1";

} // namespace

RemoteDevice::RemoteDevice(Surroundings& surroundings, std::string adapterPath,
                           std::function<bool()> isPowered, DeviceSettings settings)
    : mSurroundings(surroundings)
    , mAdapterPath(std::move(adapterPath))
    , mIsPowered(std::move(isPowered))
    , mSettings(std::move(settings)) {
    if (isKnown())
        appear();
}

RemoteDevice::~RemoteDevice() {
    disappear();
}

std::string RemoteDevice::path() const {
    std::string digits = mSettings.address;
    std::ranges::replace(digits, ':', '_');
    return mAdapterPath + "/dev_" + digits;
}

bool RemoteDevice::isKnown() const {
    return mSettings.paired || mSettings.trusted || mSettings.connected;
}

void RemoteDevice::change(const DeviceSettings& settings) {
    mSettings = settings;
    if (isKnown())
        appear();
    update();
}

void RemoteDevice::appear() {
    if (mObject != nullptr || mSurroundings.bus == nullptr)
        return;
    mObject = std::make_unique<BusObject>(
        mSurroundings.bus->connection, path(), kDeviceInterface,
        [this](const std::string& name, const Value& value) { write(name, value); });
    mObject->writable("Alias");
    mObject->writable("Trusted");
    mObject->passing("RSSI");
    mObject->set("Address", mSettings.address);
    mObject->set("Adapter", sdbus::ObjectPath(mAdapterPath));
    addMethods();
    update();
    mObject->publish();
}

void RemoteDevice::disappear() {
    if (mPairing)
        mPairing->cancel();
    mObject.reset();
}

void RemoteDevice::disconnect() {
    if (mPairing)
        mPairing->fail("NotReady");
    mSettings.connected = false;
    update();
}

void RemoteDevice::unpair() {
    mSettings.paired = mSettings.trusted = mSettings.connected = false;
    mAlias.clear();
    disappear();
}

void RemoteDevice::sight() {
    if (!mSettings.inRange || !mSettings.discoverable)
        return;
    appear();
    if (mObject)
        mObject->set("RSSI", mSettings.rssi);
}

void RemoteDevice::loseSight() const {
    if (mObject)
        mObject->drop("RSSI");
}

void RemoteDevice::signal(unsigned times) const {
    if (mObject == nullptr)
        return;
    for (unsigned i = 0; i < times; ++i)
        mObject->set("RSSI", static_cast<std::int16_t>(mSettings.rssi - (i % 2 == 0 ? 1 : 0)));
}

void RemoteDevice::ask(Asking kind) {
    if (mSurroundings.bus == nullptr || mPairing != nullptr || !mIsPowered())
        return;
    beginPairing(kind, Decision::Agrees);
    mPairing->ask();
}

void RemoteDevice::cancel() {
    if (mPairing)
        mPairing->cancel();
}

void RemoteDevice::forgetClient(const std::string& client) {
    if (!mPairing)
        return;
    if (mPairing->isOf(client))
        mPairing->cancel();
    else if (mPairing->hasAgent(client))
        mPairing->fail("AuthenticationFailed");
}

void RemoteDevice::addMethods() {
    mObject->method("Pair", [this](sdbus::Result<>&& result) {
        const std::string client = mObject->sender();
        mSurroundings.recorder.add({"Pair", mSettings.address, "", client});
        pair(client, std::move(result));
    });
    mObject->method("CancelPairing", [this] {
        mSurroundings.recorder.add({"CancelPairing", mSettings.address, "", mObject->sender()});
        if (!mPairing)
            throw bluezError("DoesNotExist", "Does Not Exist");
        mPairing->cancel();
    });
    mObject->method("Connect", [this] {
        if (!mIsPowered())
            throw bluezError("NotReady", "Resource Not Ready");
        if (!mSettings.inRange)
            throw bluezError("Failed", "br-connection-page-timeout");
        setLink(true);
    });
    mObject->method("Disconnect", [this] {
        if (!mSettings.connected)
            throw bluezError("NotConnected", "Not Connected");
        setLink(false);
    });
}

void RemoteDevice::write(const std::string& name, const Value& value) {
    if (name == "Trusted")
        mSettings.trusted = std::get<bool>(value);
    else
        mAlias = std::get<std::string>(value);
    update();
}

void RemoteDevice::pair(const std::string& client, sdbus::Result<>&& result) {
    try {
        checkPair();
    } catch (const sdbus::Error& error) {
        return result.returnError(error);
    }
    beginPairing(Asking::Confirmation, mSettings.decision);
    mPairing->call({client, std::move(result)});
}

void RemoteDevice::checkPair() const {
    if (!mIsPowered())
        throw bluezError("NotReady", "Resource Not Ready");
    if (mPairing)
        throw bluezError("InProgress", "In Progress");
    if (mSettings.paired)
        throw bluezError("AlreadyExists", "Already Exists");
    if (!mSettings.inRange)
        throw bluezError("ConnectionAttemptFailed", "Page Timeout");
}

void RemoteDevice::setLink(bool connected) {
    mSettings.connected = connected;
    appear();
    update();
}

void RemoteDevice::beginPairing(Asking kind, Decision decision) {
    setLink(true);
    mPairing = std::make_unique<Pairing>(
        mSurroundings, Question{kind, path(), mSettings.address}, decision,
        Pairing::Outcome{[this](Asking agreed) { agree(agreed); }, [this] { endPairing(); }});
}

void RemoteDevice::endPairing() {
    mPairing.reset();
    if (!mSettings.paired)
        mSettings.connected = false;
    update();
}

void RemoteDevice::agree(Asking kind) {
    const bool isPaired = kind == Asking::Confirmation || kind == Asking::Authorization ||
                          kind == Asking::PinCode || kind == Asking::Passkey;
    if (!isPaired || mSettings.paired)
        return;
    mSettings.paired = true;
    mSurroundings.recorder.add({"paired", mSettings.address, mSettings.name, ""});
    update();
}

void RemoteDevice::update() {
    if (!mObject)
        return;
    mObject->set("Name", mSettings.name);
    mObject->set("Alias", mAlias.empty() ? mSettings.name : mAlias);
    mObject->set("Class", mSettings.deviceClass);
    mObject->set("Paired", mSettings.paired);
    mObject->set("Trusted", mSettings.trusted);
    mObject->set("Connected", mSettings.connected);
}

} // namespace orbelantine::stack
