#pragma once

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace orbelantine {

/// A mutex of the process that threads find by its name: owned by a thread, any number of times
/// over, and free again when that thread has ended. It lasts as long as someone holds it.
class ThreadMutex {
  public:
    [[nodiscard]] static std::shared_ptr<ThreadMutex> named(const std::wstring& name);

    /// 0 if the calling thread owns it now, 0x80 if its owner ended without letting it go, 258
    /// while another thread owns it.
    [[nodiscard]] std::uint32_t tryLock();
    /// Nothing if the calling thread doesn't own it.
    void unlock();

  private:
    std::mutex mMutex;
    pid_t mOwner = 0;
    int mCount = 0;
};

} // namespace orbelantine
