#pragma once

#include "core/common/errors/ErrorCode.h"

#include <boost/function.hpp>
#include <boost/signals2/signal.hpp>

#include <cstdint>

namespace orbelantine {

/// What a phone tells of its own cursor and screen. Its signals may fire on any thread.
class IRemoteMouseInfoProvider {
  public:
    class Dummy;

    using Callback = boost::function<void(error_code)>;

    /// Both return soon and call `callback` once, on a thread that doesn't wait for them; a
    /// provider that never will drops it instead.
    virtual void start(Callback callback) = 0;
    virtual void stop(Callback callback) = 0;
    // Behind the operations, whose places hosts count on.
    virtual ~IRemoteMouseInfoProvider() = default;

    /// The cursor's place, in pixels of the viewport.
    boost::signals2::signal<void(std::int32_t, std::int32_t)> onCursorMove;
    /// Width and height of the viewport.
    boost::signals2::signal<void(std::int32_t, std::int32_t)> onCursorViewPortChanged;
    /// Width and height of the phone's picture, its scale, its inset.
    boost::signals2::signal<void(std::int32_t, std::int32_t, double, std::int32_t)>
        onLogicalDimensionsChanged;
};

/// For a phone that tells nothing: drops what it is given.
class IRemoteMouseInfoProvider::Dummy final : public IRemoteMouseInfoProvider {
  public:
    void start(Callback callback) override;
    void stop(Callback callback) override;
};

} // namespace orbelantine
