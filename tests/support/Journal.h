#pragma once

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {

using Names = std::vector<std::string>;

/// What happened, in order, on any threads.
class Journal {
  public:
    void note(const std::string& what) {
        {
            const std::lock_guard lock(mMutex);
            mNotes.push_back(what);
        }
        mChanged.notify_all();
    }

    /// The notes since the last call.
    Names take() {
        const std::lock_guard lock(mMutex);
        return std::exchange(mNotes, {});
    }

    /// Until the note stands there that often.
    void await(const std::string& what, int times = 1) {
        std::unique_lock lock(mMutex);
        mChanged.wait(lock, [&] { return std::ranges::count(mNotes, what) >= times; });
    }

  private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    Names mNotes;
};

} // namespace orbelantine::test
