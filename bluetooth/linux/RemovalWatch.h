#pragma once

#include "core/common/types/linux/FileDescriptor.h"

#include <functional>
#include <thread>

namespace orbelantine {

/// Calls once, from a thread of its own, when the device hangs up. After destruction, which comes
/// before the socket is closed or shut down here, it calls no more.
class RemovalWatch {
  public:
    /// Throws std::system_error if there can be no event or no thread.
    RemovalWatch(int socket, std::function<void()> onRemoval);
    /// Waits for a call in progress; not from within it.
    ~RemovalWatch();
    RemovalWatch(const RemovalWatch&) = delete;
    RemovalWatch& operator=(const RemovalWatch&) = delete;

  private:
    void run();

    const int mSocket;
    std::function<void()> mOnRemoval;
    FileDescriptor mStop;
    std::thread mThread;
};

} // namespace orbelantine
