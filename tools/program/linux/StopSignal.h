#pragma once

#include "core/common/types/linux/FileDescriptor.h"

#include <csignal>

namespace orbelantine::phone {

/// While it lives, SIGTERM, SIGINT and SIGHUP do not end the process but make descriptor()
/// readable. To be made before any other thread; throws std::system_error.
class StopSignal {
  public:
    StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;
    ~StopSignal();

    [[nodiscard]] int descriptor() const { return mDescriptor.get(); }

  private:
    sigset_t mFormerMask{};
    FileDescriptor mDescriptor;
};

} // namespace orbelantine::phone
