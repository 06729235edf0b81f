#pragma once

#include "avstack/IInputFlow.h"
#include "core/common/config/KVStore.h"
#include "core/common/config/SettingsApi.h"
#include "core/common/run/CallGate.h"
#include "core/common/run/StateMachine.h"
#include "input/context/IInputContext.h"
#include "input/relative/RelativeCursor.h"
#include "input/relative/RelativeMouseState.h"

#include <atomic>
#include <chrono>

namespace orbelantine {

class IMouseReverser;
class IRemoteMouseInfoProvider;

/// Drives a phone's cursor with deltas alone. It keeps a model of where the cursor is, parks it in
/// the bottom right corner between clicks, undoes the phone's acceleration, turns each delta into
/// the phone's frame and takes corrections from the phone's reports of its cursor.
///
/// Any thread may raise the events, here and from the signals of context and provider; each is
/// posted to the machine's worker, which alone touches the fields and pauses on purpose to pace
/// what goes out. The destructor drops what is queued, ends the source as stop() does and waits for
/// it; it isn't run on the worker.
class RelativeMouseSource final : public StateMachine<RelativeMouseSource, RelativeMouseState>,
                                  public IInputFlow {
  public:
    /// Reads "hint" (the phone's profile) and "apple" from its copy of `store` at each start. The
    /// model begins with the logical dimensions that any source has last been told of.
    explicit RelativeMouseSource(const KVStore& store,
                                 SettingsApi& settings = SettingsApi::system(),
                                 IClock& clock = IClock::system());
    ~RelativeMouseSource() override;

    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override;
    void start(const boost::shared_ptr<IInputContext>& context) override;
    /// Disconnects every slot of the context's dimensions and rotation, whoever connected it.
    void stop() override;
    [[nodiscard]] bool isAbsolute() override;
    void killFocus() override;
    void mouseMove(std::int32_t x, std::int32_t y, std::int32_t id) override;
    void mouseLButton(bool down, std::int32_t x, std::int32_t y, std::int32_t id,
                      bool reconnect) override;
    void mouseRButton(bool down, std::int32_t x, std::int32_t y, bool reconnect) override;
    void touchMove(std::int32_t x, std::int32_t y, std::int32_t id) override;
    void touch(bool down, std::int32_t x, std::int32_t y, std::int32_t id, bool reconnect) override;
    void rawMouseMove(std::int32_t dx, std::int32_t dy) override;
    void mouseWheel(bool up, std::int32_t x, std::int32_t y, std::int32_t amount) override;
    void rmiServerStarted(error_code ec) override;
    void rmiMousePosition(std::int32_t x, std::int32_t y) override;
    void rmiMouseViewport(std::int32_t width, std::int32_t height) override;
    void rmiLogicalDimensions(std::int32_t width, std::int32_t height, double scale,
                              std::int32_t inset) override;
    void rotationChanged(std::int32_t rotation) override;

    void follow(const boost::shared_ptr<void>& mark) override;

    [[nodiscard]] std::string getName() const override { return "RelativeMouseSource"; }

    /// What follows belongs to the worker.
    /// @{

    void doInit();
    /// Blocks until the provider has stopped, 5 seconds at the most.
    void doFini();

    [[nodiscard]] const CursorPoint& position() const { return mPosition; }

    [[nodiscard]] error_code lastError() const { return mLastError; }

    void setLastError(error_code ec) { mLastError = ec; }

    void updateLogicalDimensions(std::uint32_t width, std::uint32_t height);
    /// Takes x and y of `point`; whether the button is held stays.
    void placeCursor(const CursorPoint& point);
    /// Whether a report of the phone's cursor may still be the echo of an own move.
    [[nodiscard]] bool isEchoTime() const;

    /// Moves by (dx, dy): a hardware delta if `raw`, else one of the phone's cursor.
    void doSendMouseDelta(std::int32_t dx, std::int32_t dy, bool raw);
    /// Sends a delta in the phone's frame and turns it into what the phone makes of it.
    void doSendMouseDeltaAfterRotation(std::int32_t& dx, std::int32_t& dy);
    void doSendRotated(CursorDelta delta);
    /// Moves to `point`, then presses or releases the left button as its flags say.
    void doMouseMove(const CursorPoint& point);
    void doMoveScaled(const CursorPoint& point);
    /// Parks the cursor and lets it settle.
    void doMouseMoveHide();
    void doClickDelay();

    /// Give `point` the place within the logical dimensions that it has within a rectangle.
    void doConvertToLogical(CursorPoint& point, std::int32_t width, std::int32_t height);
    [[nodiscard]] bool doConvertRmiToDevicePosition(CursorPoint& point);
    /// The same for places of the surface, and of the screen by the surface's origin.
    [[nodiscard]] CursorPoint logicalFromSurface(CursorPoint point);
    [[nodiscard]] CursorPoint logicalFromScreen(CursorPoint point);
    /// The same for the system cursor's place on the screen, which the context converts.
    [[nodiscard]] CursorPoint logicalUnderCursor(std::int32_t x, std::int32_t y);

    void doMouseLock();
    /// Puts the system's cursor on the spot of the phone's.
    void doMouseUnlock();
    void doSendMouseLButton(bool down);
    void doSendMouseRButton(bool down);
    void doSendMouseWheel(bool up, std::int32_t amount);

    /// @}

  private:
    /// A slot that raises an event as long as this object lives.
    template <class... Parameters>
    [[nodiscard]] auto slot(void (RelativeMouseSource::*event)(Parameters...));

    void finish();
    [[nodiscard]] float readDragFactor(bool apple);
    [[nodiscard]] bool stopProvider();

    [[nodiscard]] std::int64_t nowNs() const { return clock().now().time_since_epoch().count(); }

    [[nodiscard]] bool hasLogicalDimensions() const {
        return mLogical.width != 0 && mLogical.height != 0;
    }

    /// Turns a delta and sends it. Unless the phone is turned, dx and dy become what it makes of
    /// them.
    void sendTurned(std::int32_t& dx, std::int32_t& dy);
    void sendEvent(std::int32_t x, std::int32_t y, int type, bool networkOrder);
    void setPosition(const CursorPoint& point);
    [[nodiscard]] CursorExtent surfaceExtent();
    [[nodiscard]] IInputContext::Point surfaceOrigin();

    error_code mLastError;
    boost::shared_ptr<IInputContext> mContext;
    boost::shared_ptr<IMediaElement> mTarget;
    boost::shared_ptr<IMouseReverser> mReverser;
    KVStore mStore;
    CursorPoint mPosition;
    std::int64_t mLastSendNs;
    std::chrono::milliseconds mClickDelay{0};
    /// Of the system: 1 to 20.
    std::uint32_t mMouseSpeed = 0;
    float mDragFactor = 0;
    boost::shared_ptr<IRemoteMouseInfoProvider> mProvider;
    /// The provider's viewport; 0 until known.
    CursorExtent mRmi;
    CursorExtent mLogical;
    std::int32_t mRotation = 1;
    std::int32_t mInset = 0;
    CursorPoint mHiddenPosition;
    bool mScaledViewport = false;

    SettingsApi& mSettings;
    /// Any thread: guards against the slots that outlive this object.
    const boost::shared_ptr<CallGate> mGate;
};

} // namespace orbelantine
