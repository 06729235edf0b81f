#pragma once

#include "input/context/IInputContext.h"
#include "input/window/WindowApi.h"

#include <boost/smart_ptr/enable_shared_from_this.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

namespace orbelantine {

/// A window of the host as an input surface: an HWND, on Linux the id of an X11 window. Its signals
/// fire on the window's thread; on Linux that is one thread of the library's for all windows.
///
/// Any thread may let go of it: a message that is being handled ends first. The operations may be
/// called by any thread; those on the cursor act for the window's thread.
class WindowsHwndInputContext final
    : public IInputContext,
      public boost::enable_shared_from_this<WindowsHwndInputContext> {
  public:
    /// With `useRawInput` the mouse's own deltas are raised too, wherever the cursor is. With
    /// `mapImeKeys` a key that an input method has taken is raised as the key that it was.
    WindowsHwndInputContext(bool useRawInput, void* window, bool mapImeKeys,
                            WindowApi& api = WindowApi::system());
    /// Gives the window back to what handled its messages before.
    ~WindowsHwndInputContext() override;

    /// An attached context.
    [[nodiscard]] static boost::shared_ptr<WindowsHwndInputContext>
    create(bool useRawInput, void* window, bool mapImeKeys, WindowApi& api = WindowApi::system());

    /// Begins to take the window's messages, once, when a shared pointer owns the context. Throws
    /// std::runtime_error with a sentence if the window can't be taken or is one's already. Without
    /// a window there is nothing to take, and the questions about it answer false.
    void attach();

    [[nodiscard]] std::uint16_t convertVKCodeToUnicode(std::uint32_t vk) override;
    /// The system's code of KeySpace for KeyControl too.
    [[nodiscard]] std::uint32_t mapVK(std::uint32_t index) override;
    [[nodiscard]] std::uint32_t mapScan(std::uint32_t index) override;
    void lockSystemMouse() override;
    void unlockSystemMouse(std::int32_t x = -1, std::int32_t y = -1) override;
    [[nodiscard]] std::int32_t getSystemMouseSpeed() override;
    bool screenToInputSurface(Point& point) override;
    bool inputSurfaceToScreen(Point& point) override;
    /// The rectangle's left top is (0, 0).
    bool getInputSurfaceRectWithinScreen(Rect& rect) override;
    void setCaptureMouseExclusively() override;
    void releaseCaptureMouseExclusively() override;

    /// Holds keys back from now on, until as many calls of resumeKeyInjection. The id of this
    /// pause.
    virtual std::int32_t pauseKeyInjection();
    /// Raises the keys that were held back under `id`, in order, and ends one pause.
    virtual void resumeKeyInjection(std::int32_t id);

    /// vk, scan code, repeat count; ahead of onKeyDown, which isn't raised if a slot returns true.
    Signal<bool(std::uint32_t, std::uint32_t, std::int32_t)> onPreKeyDown;
    /// vk, scan code; ahead of onKeyUp.
    Signal<bool(std::uint32_t, std::uint32_t)> onPreKeyUp;
    /// Window, message, wParam, lParam: every message, ahead of all else.
    Signal<void(void*, std::uint32_t, std::uintptr_t, std::intptr_t)> onMessage;

  private:
    friend WindowApi::Result handleWindowMessage(WindowApi& api, const WindowMessage& message);
    friend struct WindowMessageTable;
    using Result = WindowMessage::Result;

    /// A key message that waits for the end of a pause.
    struct PendingKey {
        WindowMessage message;
        std::int32_t pauseId;
    };

    void initWinProc();
    void registerInput();
    void unregisterInput();
    void restoreProcedure();
    void disconnectAll();

    Result handle(const WindowMessage& message);
    Result passOn(const WindowMessage& message);
    Result passOnWithoutLParam(const WindowMessage& message);
    /// Of the keys that the system itself has a use for; 0 for the others.
    Result passOnSystemKey(const WindowMessage& message, std::uint32_t vk);

    Result onWndDestroy(const WindowMessage& message);
    Result onKillFocus(const WindowMessage& message);
    Result onSetCursor(const WindowMessage& message);
    Result onRawInput(const WindowMessage& message);
    Result onMouseMove(const WindowMessage& message);
    Result onWndLButtonDown(const WindowMessage& message);
    Result onLButtonUp(const WindowMessage& message);
    Result onLButtonDoubleClick(const WindowMessage& message);
    Result onRButtonDown(const WindowMessage& message);
    Result onRButtonUp(const WindowMessage& message);
    Result onWheel(const WindowMessage& message);
    Result onHorizontalWheel(const WindowMessage& message);
    template <auto PointerSignal, bool PassedOn>
    Result onPointer(const WindowMessage& message);
    void takeFocus(const char* function);

    Result onWndKeyDown(const WindowMessage& message);
    Result onWndKeyUp(const WindowMessage& message);
    Result onSystemKeyDown(const WindowMessage& message);
    Result onSystemKeyUp(const WindowMessage& message);
    /// A key that isn't held back, down or up.
    template <class Direction>
    Result raiseKey(const WindowMessage& message, const char* function);
    /// Whether the key message waits for the end of a pause.
    bool holdBack(const WindowMessage& message);
    [[nodiscard]] static std::uint32_t getScanCode(const WindowMessage& message);
    /// The key itself where an input method has put its own in its place.
    [[nodiscard]] std::uint32_t keyBehind(std::uint32_t vk, std::uint32_t scanCode);
    void replayKeys(std::int32_t id);
    bool takePending(std::int32_t id, WindowMessage& message);

    WindowApi& mApi;
    const bool mUseRawInput;
    const WindowMessage::Handle mHwnd;
    const bool mMapImeKeys;
    bool mAttached = false;
    WindowApi::Procedure mWindowProc = 0;
    std::atomic<bool> mCursorHidden = false;
    bool mSwallowLButton = false;

    // Of what follows.
    std::mutex mKeysMutex;
    std::int32_t mPauseCount = 0;
    std::int32_t mPauseId = 0;
    bool mReplaying = false;
    std::vector<PendingKey> mPendingKeys;
};

} // namespace orbelantine
