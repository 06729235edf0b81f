#pragma once

#include "ipc/pipe/Overlapped.h"

#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace orbelantine {

/// What belongs to the handles that were given out. A handle is the descriptor of its object, which
/// stays open, so that its number goes to no other, until the last who holds the object lets go.
template <class T>
class HandleTable {
  public:
    PipeHandle add(PipeHandle handle, std::shared_ptr<T> object) {
        const std::lock_guard lock(mMutex);
        mObjects.insert_or_assign(handle, std::move(object));
        return handle;
    }

    /// Null where there is none.
    [[nodiscard]] std::shared_ptr<T> find(PipeHandle handle) const {
        const std::lock_guard lock(mMutex);
        const auto found = mObjects.find(handle);
        return found == mObjects.end() ? nullptr : found->second;
    }

    std::shared_ptr<T> take(PipeHandle handle) {
        const std::lock_guard lock(mMutex);
        const auto node = mObjects.extract(handle);
        return node ? node.mapped() : nullptr;
    }

  private:
    mutable std::mutex mMutex;
    std::map<PipeHandle, std::shared_ptr<T>> mObjects;
};

} // namespace orbelantine
