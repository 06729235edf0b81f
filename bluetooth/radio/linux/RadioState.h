#pragma once

#include "core/common/types/CMacAddress.h"

#include <mutex>
#include <string>
#include <utility>

namespace orbelantine::bluez {

/// The local radio as last told of; name and address stay when it goes.
struct Radio {
    bool on = false;
    bool discoverable = false;
    std::wstring name;
    CMacAddress address;
};

/// A radio that one thread keeps and any may look at.
class RadioState {
  public:
    [[nodiscard]] Radio get() const {
        const std::lock_guard lock(mMutex);
        return mRadio;
    }

    template <class Change>
    void change(Change change) {
        const std::lock_guard lock(mMutex);
        change(mRadio);
    }

  private:
    mutable std::mutex mMutex;
    Radio mRadio;
};

} // namespace orbelantine::bluez
