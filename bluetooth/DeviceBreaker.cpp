#include "bluetooth/DeviceBreaker.h"

#include "bluetooth/BluetoothDriver.h"

namespace orbelantine {

DeviceBreaker::Breaking::Breaking(DeviceBreaker& breaker)
    : mBreaker(breaker) {
    ++mBreaker.mBreaking;
    const std::lock_guard lock(mBreaker.mMutex);
    for (BluetoothDriver* device : mBreaker.mDevices)
        device->close();
}

DeviceBreaker::Breaking::~Breaking() {
    --mBreaker.mBreaking;
}

void DeviceBreaker::add(BluetoothDriver& device) {
    const std::lock_guard lock(mMutex);
    mDevices.push_back(&device);
}

void DeviceBreaker::remove(BluetoothDriver& device) {
    const std::lock_guard lock(mMutex);
    std::erase(mDevices, &device);
}

} // namespace orbelantine
