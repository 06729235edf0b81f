#pragma once

#include "core/common/types/linux/FileDescriptor.h"
#include "tools/virtual_phone/driver/linux/DeviceSocket.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace orbelantine::latency {

using Clock = std::chrono::steady_clock;

/// The driver's end of the road, in a device folder of its own that the library finds through the
/// environment. A thread for each connection answers requests as a driver does, and takes the time
/// of each input report. Made before the library's threads, and gone after them.
class Receiver {
  public:
    Receiver();
    ~Receiver();
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    /// A connection of the caller's own. Throws std::runtime_error.
    [[nodiscard]] FileDescriptor open() const;
    /// When the report came that makes `count` in all. Throws std::runtime_error if it doesn't
    /// come.
    [[nodiscard]] Clock::time_point awaitReport(std::uint64_t count);

  private:
    void accept();
    void serve(int connection);

    std::string mFolder;
    FileDescriptor mStopReader;
    FileDescriptor mStopWriter;
    std::optional<phone::DeviceSocket> mSocket;
    std::mutex mMutex;
    std::condition_variable mArrived;
    std::uint64_t mCount = 0;
    Clock::time_point mLast;
    // The acceptor's, until it has ended.
    std::vector<std::thread> mServers;
    std::thread mAcceptor;
};

} // namespace orbelantine::latency
