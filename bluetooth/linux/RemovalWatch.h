#pragma once

#include "bluetooth/linux/DeviceTable.h"

#include <atomic>
#include <functional>
#include <thread>

namespace orbelantine {

/// Calls once, from a thread of its own, when the device hangs up; not when its handle is closed
/// here. After destruction it calls no more.
class RemovalWatch {
  public:
    RemovalWatch(DeviceTable::Lease device, std::function<void()> onRemoval);
    /// Waits for a call in progress; not from within it.
    ~RemovalWatch();
    RemovalWatch(const RemovalWatch&) = delete;
    RemovalWatch& operator=(const RemovalWatch&) = delete;

  private:
    void run();

    DeviceTable::Lease mDevice;
    std::function<void()> mOnRemoval;
    FileDescriptor mStop;
    std::thread mThread;
};

} // namespace orbelantine
