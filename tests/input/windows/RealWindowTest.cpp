#include "input/pointer/PointerApi.h"
#include "input/window/WindowsHwndInputContext.h"
#include "tests/input/FakeWindowApi.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace orbelantine {
namespace {

using test::Names;
using test::spaced;

constexpr DWORD kPatienceMs = 10'000;
constexpr int kWidth = 300;
constexpr int kHeight = 200;

/// A window without a frame, with double clicks, that begins at (0, 0).
HWND makeWindow() {
    static const ATOM windowClass = [] {
        WNDCLASSW made{};
        made.style = CS_DBLCLKS;
        made.lpfnWndProc = DefWindowProcW;
        made.hInstance = GetModuleHandleW(nullptr);
        made.lpszClassName = L"Surface";
        return RegisterClassW(&made);
    }();
    return CreateWindowExW(0, MAKEINTATOM(windowClass), L"Surface", WS_POPUP | WS_VISIBLE, 0, 0,
                           kWidth, kHeight, nullptr, nullptr, nullptr, nullptr);
}

struct RealWindowTest : testing::Test {
    HWND window = makeWindow();
    test::Journal journal;
    boost::shared_ptr<WindowsHwndInputContext> context;
    Names happened;

    ~RealWindowTest() override {
        context.reset();
        DestroyWindow(window);
    }

    void SetUp() override {
        if (window == nullptr)
            GTEST_SKIP() << "no window can be made here: error " << GetLastError();
    }

    void attach(bool useRawInput = false) {
        context = WindowsHwndInputContext::create(useRawInput, window, false);
        writeDown(context->onKeyDown, "down");
        writeDown(context->onKeyUp, "up");
        writeDown(context->onMouseClickDown, "press");
        writeDown(context->onMouseClickUp, "lift");
        writeDown(context->onRelativeMouseMove, "delta");
        writeDown(context->onInputSurfaceLostFocus, "lost focus");
        writeDown(context->onInputSurfaceDestroyed, "destroyed");
        SetForegroundWindow(window);
        SetFocus(window);
    }

    template <class Signature>
    void writeDown(boost::signals2::signal<Signature>& signal, const char* name) {
        signal.connect([this, name](auto... values) { journal.note(spaced(name, values...)); });
    }

    /// Gives messages out until that has happened. False if it doesn't.
    bool comes(const std::string& what) {
        const DWORD begun = GetTickCount();
        while (std::ranges::find(happened, what) == happened.end()) {
            for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);)
                DispatchMessageW(&message);
            std::ranges::copy(journal.take(), std::back_inserter(happened));
            if (GetTickCount() - begun > kPatienceMs)
                return false;
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        }
        return true;
    }

    static void pressKey(WORD vk, WORD scanCode, DWORD flags) {
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki = {vk, scanCode, flags, 0, 0};
        ASSERT_EQ(SendInput(1, &input, sizeof(input)), 1U);
    }
};

TEST_F(RealWindowTest, KeysArriveWithTheirScanCodes) {
    attach();
    pressKey('A', 30, 0);
    pressKey('A', 30, KEYEVENTF_KEYUP);
    pressKey(VK_RIGHT, 0x4D, KEYEVENTF_EXTENDEDKEY);
    pressKey(VK_RIGHT, 0x4D, KEYEVENTF_EXTENDEDKEY | KEYEVENTF_KEYUP);
    EXPECT_TRUE(comes("up 39 205")) << testing::PrintToString(happened);
    EXPECT_EQ(happened, (Names{"down 65 30 1", "up 65 30", "down 39 205 1", "up 39 205"}));
}

TEST_F(RealWindowTest, TheMousesDeltasArriveAtTheLastContextThatAsked) {
    attach(true);
    context.reset();
    attach(true);
    ASSERT_EQ(PointerApi::system().sendInput({7, -3, 0, PointerApi::kMove, 0, 0}), 0U);
    const auto isDelta = [](const std::string& what) { return what.starts_with("delta "); };
    const DWORD begun = GetTickCount();
    while (std::ranges::none_of(happened, isDelta) && GetTickCount() - begun < kPatienceMs) {
        journal.note("a round");
        comes("a round");
        std::erase(happened, "a round");
    }
    ASSERT_EQ(std::ranges::count_if(happened, isDelta), 1) << testing::PrintToString(happened);
    // The system's acceleration may have made more of it.
    int dx = 0;
    int dy = 0;
    std::istringstream(happened.front().substr(6)) >> dx >> dy;
    EXPECT_GE(dx, 7);
    EXPECT_LE(dy, -3);
}

TEST_F(RealWindowTest, ALockedCursorIsConfinedUntilItIsUnlocked) {
    attach();
    context->lockSystemMouse();
    RECT clip{};
    ASSERT_TRUE(GetClipCursor(&clip));
    EXPECT_EQ(spaced(clip.left, clip.top, clip.right, clip.bottom), "20 20 280 180");
    context->unlockSystemMouse(33, 44);
    POINT cursor{};
    ASSERT_TRUE(GetCursorPos(&cursor));
    EXPECT_EQ(spaced(cursor.x, cursor.y), "33 44");
    ASSERT_TRUE(GetClipCursor(&clip));
    EXPECT_GE(clip.right - clip.left, kWidth);
}

TEST_F(RealWindowTest, TheQuestionsAreAnsweredByWindows) {
    attach();
    IInputContext::Rect rect{};
    EXPECT_TRUE(context->getInputSurfaceRectWithinScreen(rect));
    EXPECT_EQ(spaced(rect.left, rect.top, rect.right, rect.bottom), "0 0 300 200");
    const std::int32_t speed = context->getSystemMouseSpeed();
    EXPECT_TRUE(speed >= 1 && speed <= 20) << speed;
    EXPECT_EQ(context->convertVKCodeToUnicode('A'), u'a');
    EXPECT_EQ(context->convertVKCodeToUnicode(VK_F1), 0);
}

TEST_F(RealWindowTest, AnotherWindowsFocusAndADestroyedWindowAreTold) {
    attach();
    const HWND other = makeWindow();
    SetFocus(other);
    EXPECT_TRUE(comes("lost focus"));
    DestroyWindow(other);
    DestroyWindow(window);
    EXPECT_TRUE(comes("destroyed"));
}

TEST_F(RealWindowTest, AThousandContextsLeaveTheWindowAsItWas) {
    const LONG_PTR procedure = GetWindowLongPtrW(window, GWLP_WNDPROC);
    for (int i = 0; i < 1000; ++i) {
        context = WindowsHwndInputContext::create(true, window, false);
        ASSERT_NE(GetWindowLongPtrW(window, GWLP_WNDPROC), procedure);
        context.reset();
    }
    EXPECT_EQ(GetWindowLongPtrW(window, GWLP_WNDPROC), procedure);
    const HWND gone = makeWindow();
    DestroyWindow(gone);
    EXPECT_THROW((void)WindowsHwndInputContext::create(false, gone, false), std::runtime_error);
}

// Plays only where a user's hand is told of it, by the line "ready".
TEST_F(RealWindowTest, AHandsDoubleClickIsOneClickAndItsKeysHaveTheirScanCodes) {
    if (std::getenv("ORBELANTINE_HAND") == nullptr)
        GTEST_SKIP() << "ORBELANTINE_HAND is not set: no hand is over the window";
    attach();
    std::cout << "ready" << std::endl;
    EXPECT_TRUE(comes("up 27 1")) << testing::PrintToString(happened);
    std::erase(happened, "lost focus");
    EXPECT_EQ(happened, (Names{"press 0 50 60", "lift 0 50 60", "press 1 70 80", "lift 1 70 80",
                               "down 65 30 1", "up 65 30", "down 39 205 1", "up 39 205",
                               "down 27 1 1", "up 27 1"}));
}

} // namespace
} // namespace orbelantine
