#pragma once

#include "avstack/IInputFlow.h"
#include "avstack/IInputSource.h"
#include "input/context/IInputContext.h"

#include <boost/signals2/connection.hpp>
#include <boost/smart_ptr/enable_shared_from_this.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <list>
#include <mutex>

namespace orbelantine {

class IMouseSource;
class KVStore;
class KeyboardSource;
struct InputFormat;

/// The input source of a pipeline: relays the events of a surface to a keyboard source and, if the
/// format asks for one, a mouse source, which deliver to the target by themselves. Held by a shared
/// pointer. Any thread may call; one lock guards all, and is held while a source takes an event.
class GenericInputSource final : public IInputSource,
                                 public IInputFlow,
                                 public boost::enable_shared_from_this<GenericInputSource> {
  public:
    /// Reads the surface and "apple".
    GenericInputSource(const KVStore& settings, const InputFormat& format);

    using IInputSource::start;
    /// Does nothing without a surface. Throws what the sources' constructors throw.
    void start() override;
    /// No event reaches the target after it. The sources, with what they hold, go.
    void stop() override;
    /// Counts from the next start on.
    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override;
    /// For an element that feeds this one: goes on to the target.
    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override;
    /// The next click tells the mouse source that the phone may have come back.
    void refresh() override;
    void follow(const boost::shared_ptr<void>& mark) override;

  private:
    enum class PointerEvent { Down, Up, Update };

    template <class Signal, class Handler>
    void listen(Signal& signal, Handler handler);
    template <class Signal, class Handler>
    void listenForMouse(Signal& signal, Handler handler);
    void createKeyboardSource();
    void createMouseSource();
    [[nodiscard]] bool hidDeviceIsRelative();
    void connectMouse();

    void onInputSurfaceDestroyed();
    void onInputSurfaceLostFocus();
    void onMouseClick(bool down, IInputContext::eMouseButton button, std::int32_t x,
                      std::int32_t y);
    void onLButton(bool down, std::int32_t x, std::int32_t y);
    void onRButton(bool down, std::int32_t x, std::int32_t y);
    void onAbsoluteMouseMove(std::int32_t x, std::int32_t y);
    void onRelativeMouseWheel(std::int32_t delta, std::int32_t x, std::int32_t y);
    void processPointerEvent(PointerEvent event, IInputContext::ePointerType type, std::uint32_t id,
                             std::int32_t x, std::int32_t y, bool primary);
    [[nodiscard]] bool takesPointer(IInputContext::ePointerType type, bool primary) const;
    [[nodiscard]] bool takeRefresh();

    boost::shared_ptr<KVStore> mSettings;
    std::list<boost::signals2::scoped_connection> mConnections;
    boost::shared_ptr<IMediaElement> mTarget;
    boost::shared_ptr<IInputContext> mInputContext;
    std::recursive_mutex mMutex;
    boost::shared_ptr<KeyboardSource> mKeyboardSource;
    boost::shared_ptr<IMouseSource> mMouseSource;
    boost::shared_ptr<InputFormat> mFormat;
    // Set without the lock.
    std::atomic<std::uint8_t> mRefreshPending = 0;
    bool mNaturalWheel;
    IInputContext::Point mLastAbsolute{-1, -1};
};

} // namespace orbelantine
