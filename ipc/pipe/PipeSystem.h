#pragma once

#include "core/common/run/Clock.h"
#include "ipc/pipe/PipeApi.h"
#include "ipc/pipe/UserApi.h"
#include "ipc/trust/TrustApi.h"

#include <functional>
#include <memory>

namespace orbelantine {

/// What a pipe's end or server stands on; the objects outlive it.
struct PipeSystem {
    PipeApi* pipes = &PipeApi::system();
    UserApi* user = &UserApi::system();
    IClock* clock = &IClock::system();
    /// Makes what one check of a peer's signature asks.
    std::function<std::unique_ptr<TrustApi>()> trust = &TrustApi::system;
};

} // namespace orbelantine
