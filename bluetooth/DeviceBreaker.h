#pragma once

#include <atomic>
#include <mutex>
#include <vector>

namespace orbelantine {

class BluetoothDriver;

/// The devices under one link, so that another thread than the one that waits for the driver can
/// break what is under way on them. Any thread may call.
class DeviceBreaker {
  public:
    /// While it lives, none of the devices is open, nor can be opened.
    class Breaking {
      public:
        /// Closes the devices. Whoever waits for the driver on one of them fails at once.
        explicit Breaking(DeviceBreaker& breaker);
        ~Breaking();
        Breaking(const Breaking&) = delete;
        Breaking& operator=(const Breaking&) = delete;

      private:
        DeviceBreaker& mBreaker;
    };

    /// Both by the device itself, for the time of its life.
    void add(BluetoothDriver& device);
    void remove(BluetoothDriver& device);

    [[nodiscard]] bool isBreaking() const { return mBreaking > 0; }

  private:
    std::mutex mMutex;
    std::vector<BluetoothDriver*> mDevices;
    std::atomic<int> mBreaking = 0;
};

} // namespace orbelantine
