#include "core/common/log/Log.h"
#include "input/window/WindowsHwndInputContext.h"

#include <algorithm>
#include <limits>

namespace orbelantine {

namespace {

constexpr std::uint32_t kHighestScanCode = 127;
constexpr std::uint32_t kExtendedScanCode = 128;

/// Whether the system has a use of its own for the key: its menus, and Alt+F4.
bool isSystemKey(std::uint32_t key) {
    return key == vk::kLMenu || key == vk::kRMenu || key == vk::kMenu || key == vk::kF4;
}

/// What a key's two directions differ in.
struct KeyDownward {
    static constexpr const char* kIgnored = "%s() Ignoring Win/IME key";
    static constexpr const char* kHandledOutside =
        "%s() handled outside, not passing to onKeyDown.";

    [[nodiscard]] static bool isWatched(const WindowsHwndInputContext& context) {
        return !context.onPreKeyDown.empty();
    }

    [[nodiscard]] static bool isHandled(WindowsHwndInputContext& context, std::uint32_t vk,
                                        std::uint32_t scanCode, std::int32_t repeatCount) {
        return context.onPreKeyDown(vk, scanCode, repeatCount).value_or(false);
    }

    static void raise(WindowsHwndInputContext& context, std::uint32_t vk, std::uint32_t scanCode,
                      std::int32_t repeatCount) {
        context.onKeyDown(vk, scanCode, repeatCount);
    }
};

struct KeyUpward {
    static constexpr const char* kIgnored = "%s: Ignoring Win/IME key";
    static constexpr const char* kHandledOutside = "%s() handled outside, not passing to onKeyUp.";

    [[nodiscard]] static bool isWatched(const WindowsHwndInputContext& context) {
        return !context.onPreKeyUp.empty();
    }

    [[nodiscard]] static bool isHandled(WindowsHwndInputContext& context, std::uint32_t vk,
                                        std::uint32_t scanCode, std::int32_t /*repeatCount*/) {
        return context.onPreKeyUp(vk, scanCode).value_or(false);
    }

    static void raise(WindowsHwndInputContext& context, std::uint32_t vk, std::uint32_t scanCode,
                      std::int32_t /*repeatCount*/) {
        context.onKeyUp(vk, scanCode);
    }
};

} // namespace

std::uint32_t WindowsHwndInputContext::getScanCode(const WindowMessage& message) {
    const std::uint32_t flags = highWord(static_cast<WindowMessage::Word>(message.lParam));
    if (static_cast<std::int8_t>(flags) < 0)
        ORB_LOG(kLogError, "%s() flags = 0x%08x and the scan code highest bit != 0!!!", flags);
    const std::uint32_t scanCode = flags & kHighestScanCode;
    return scanCode != 0 && (flags & kExtendedKey) != 0 ? scanCode + kExtendedScanCode : scanCode;
}

std::uint32_t WindowsHwndInputContext::keyBehind(std::uint32_t vk, std::uint32_t scanCode) {
    return vk == vk::kProcessKey ? mApi.mapVirtualKey(scanCode, WindowApi::kScanCodeToVirtualKey)
                                 : vk;
}

WindowMessage::Result WindowsHwndInputContext::passOnSystemKey(const WindowMessage& message,
                                                               std::uint32_t vk) {
    return isSystemKey(vk) ? passOn({message.window, message.message, vk, message.lParam}) : 0;
}

WindowMessage::Result WindowsHwndInputContext::onWndKeyDown(const WindowMessage& message) {
    if (holdBack(message)) {
        ORB_LOG(kLogDebug, "%s() caching current keydown message.");
        return 0;
    }
    return raiseKey<KeyDownward>(message, ORB_FUNCTION_NAME);
}

WindowMessage::Result WindowsHwndInputContext::onWndKeyUp(const WindowMessage& message) {
    return holdBack(message) ? 0 : raiseKey<KeyUpward>(message, ORB_FUNCTION_NAME);
}

template <class Direction>
WindowMessage::Result WindowsHwndInputContext::raiseKey(const WindowMessage& message,
                                                        const char* function) {
    auto vk = static_cast<std::uint32_t>(message.wParam);
    const std::uint32_t scanCode = getScanCode(message);
    const std::int32_t repeatCount = lowWord(static_cast<WindowMessage::Word>(message.lParam));
    if (Direction::isWatched(*this) &&
        Direction::isHandled(*this, keyBehind(vk, scanCode), scanCode, repeatCount)) {
        ORB_LOG_TEXT(kLogDebug, Direction::kHandledOutside, function);
        // Also of a key that went up: it is passed on as one that goes down.
        return passOnSystemKey({message.window, wm::kKeyDown, message.wParam, message.lParam}, vk);
    }
    if (vk == vk::kLWin || vk == vk::kRWin || (vk == vk::kProcessKey && !mMapImeKeys)) {
        ORB_LOG_TEXT(kLogDebug, Direction::kIgnored, function);
        return 0;
    }
    vk = keyBehind(vk, scanCode);
    Direction::raise(*this, vk, scanCode, repeatCount);
    return passOnSystemKey(message, vk);
}

WindowMessage::Result WindowsHwndInputContext::onSystemKeyDown(const WindowMessage& message) {
    const auto vk = static_cast<std::uint32_t>(message.wParam);
    onKeyDown(vk, getScanCode(message), lowWord(static_cast<WindowMessage::Word>(message.lParam)));
    return passOnSystemKey(message, vk);
}

WindowMessage::Result WindowsHwndInputContext::onSystemKeyUp(const WindowMessage& message) {
    const auto vk = static_cast<std::uint32_t>(message.wParam);
    onKeyUp(vk, getScanCode(message));
    return passOnSystemKey(message, vk);
}

bool WindowsHwndInputContext::holdBack(const WindowMessage& message) {
    const std::lock_guard lock(mKeysMutex);
    if (mPauseCount < 1 || mReplaying)
        return false;
    mPendingKeys.push_back({message, mPauseId});
    return true;
}

std::int32_t WindowsHwndInputContext::pauseKeyInjection() {
    const std::lock_guard lock(mKeysMutex);
    ++mPauseCount;
    mPauseId = mPauseId == std::numeric_limits<std::int32_t>::max() ? 0 : mPauseId + 1;
    return mPauseId;
}

void WindowsHwndInputContext::resumeKeyInjection(std::int32_t id) {
    // A slot that gets a key may let go of the context.
    const auto self = weak_from_this().lock();
    mApi.runBetweenMessages(mHwnd, [this, self, id] { replayKeys(id); });
}

void WindowsHwndInputContext::replayKeys(std::int32_t id) {
    {
        const std::lock_guard lock(mKeysMutex);
        mReplaying = true;
    }
    WindowMessage message{};
    while (takePending(id, message))
        mApi.sendMessage(message);
    const std::lock_guard lock(mKeysMutex);
    --mPauseCount;
    mReplaying = false;
}

bool WindowsHwndInputContext::takePending(std::int32_t id, WindowMessage& message) {
    const std::lock_guard lock(mKeysMutex);
    const auto found = std::find_if(mPendingKeys.begin(), mPendingKeys.end(),
                                    [&](const PendingKey& key) { return key.pauseId == id; });
    if (found == mPendingKeys.end())
        return false;
    message = found->message;
    mPendingKeys.erase(found);
    return true;
}

} // namespace orbelantine
