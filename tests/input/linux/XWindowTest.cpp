#include "input/pointer/PointerApi.h"
#include "input/window/WindowsHwndInputContext.h"
#include "tests/input/linux/PrivateDisplay.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orbelantine::test {
namespace {

constexpr std::chrono::seconds kComesWithin(20);
constexpr std::int16_t kLeft = 100;
constexpr std::int16_t kTop = 200;

using Lines = std::vector<std::string>;
using ContextPtr = boost::shared_ptr<WindowsHwndInputContext>;

std::string lineOf(std::uint32_t message, std::uintptr_t wParam, std::intptr_t lParam) {
    const auto flags = static_cast<std::uint32_t>(lParam);
    const std::uint32_t scan = (flags >> 16 & 0x7F) | (flags >> 17 & 0x80);
    const std::string key = fmt::format("{:02x} {:02x}", wParam, scan);
    const std::string place = fmt::format(" {} {}", xOf(lParam), yOf(lParam));
    switch (message) {
    case wm::kKeyDown:
        return ((flags >> 30 & 1) != 0 ? "again " : "down ") + key;
    case wm::kKeyUp:
        return "up " + key;
    case wm::kSysKeyDown:
        return "sysdown " + key;
    case wm::kSysKeyUp:
        return "sysup " + key;
    case wm::kSetFocus:
        return "focus";
    case wm::kKillFocus:
        return "blur";
    case wm::kDestroy:
        return "destroyed";
    case wm::kMouseMove:
        return "move" + place;
    case wm::kMouseWheel:
    case wm::kMouseHWheel:
        return fmt::format("{} {}", message, static_cast<std::int16_t>(wParam >> 16)) + place;
    default:
        return fmt::format("{}", message) + place;
    }
}

/// A host's window as a surface, and all that the surface is told.
class XWindow : public testing::Test {
  protected:
    void SetUp() override {
        if (!mDisplay.runs())
            GTEST_SKIP() << "no X server can be started here";
        mHost = mDisplay.makeWindow(kLeft, kTop);
        // From the screen's middle to (10, 20) in the window.
        mDisplay.moveBy(kLeft + 10 - 640, kTop + 20 - 512);
        mContext = surface(mHost);
    }

    ContextPtr surface(xcb_window_t host, bool raw = false) {
        const auto handle = reinterpret_cast<void*>(std::uintptr_t{host});
        auto context = WindowsHwndInputContext::create(raw, handle, false);
        context->onMessage.connect([this](void*, auto message, auto wParam, auto lParam) {
            if (message != wm::kSetCursor && message != wm::kInput)
                tell(lineOf(message, wParam, lParam));
        });
        context->onRelativeMouseMove.connect(
            [this](auto dx, auto dy) { tell(fmt::format("raw {} {}", dx, dy)); });
        return context;
    }

    void tell(std::string line) {
        const std::lock_guard lock(mMutex);
        mTold.push_back(std::move(line));
        mChanged.notify_all();
    }

    /// What comes, until it is `lines` or time is over.
    Lines told(const Lines& lines) {
        std::unique_lock lock(mMutex);
        mChanged.wait_for(lock, kComesWithin, [&] { return mTold == lines; });
        return std::exchange(mTold, {});
    }

    bool comes(const std::string& line, std::ptrdiff_t times = 1) {
        std::unique_lock lock(mMutex);
        return mChanged.wait_for(lock, kComesWithin, [&] {
            return std::count(mTold.begin(), mTold.end(), line) >= times;
        });
    }

    void type(std::uint8_t code) const {
        mDisplay.key(code, true);
        mDisplay.key(code, false);
    }

    void click(std::uint8_t button) const {
        mDisplay.button(button, true);
        mDisplay.button(button, false);
    }

    void takeFocus() {
        mDisplay.focus({mHost});
        ASSERT_EQ(told({"focus"}), Lines{"focus"});
    }

    void expectTold(const Lines& lines) { EXPECT_EQ(told(lines), lines); }

    const std::thread::id mTester = std::this_thread::get_id();
    PrivateDisplay mDisplay;
    xcb_window_t mHost = 0;
    std::mutex mMutex;
    std::condition_variable mChanged;
    Lines mTold;
    ContextPtr mContext;
};

std::string whyNot(const std::function<void()>& make) {
    try {
        make();
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    return "";
}

TEST_F(XWindow, HeldBackKeysAreRaisedOnItsThreadBeforeTheirPauseEnds) {
    takeFocus();
    mContext->onKeyDown.connect(
        [this](auto...) { tell(std::this_thread::get_id() != mTester ? "raised" : "here"); });
    const std::int32_t pause = mContext->pauseKeyInjection();
    type(30);
    expectTold({"down 41 1e", "up 41 1e"});
    mContext->resumeKeyInjection(pause);
    // All has come by now.
    const std::lock_guard lock(mMutex);
    EXPECT_EQ(mTold, (Lines{"down 41 1e", "raised", "up 41 1e"}));
}

TEST_F(XWindow, KeysComeWithTheCodesThatWindowsGives) {
    takeFocus();

    const struct {
        std::uint8_t code;
        const char* vkAndScan;
    } rows[] = {
        {30, "41 1e"},  {3, "32 03"},  {105, "25 cb"}, {71, "24 47"},  {69, "90 c5"},
        {71, "67 47"},  {83, "6e 53"}, {69, "90 c5"},  {119, "13 45"}, {96, "0d 9c"},
        {97, "11 9d"},  {54, "10 36"}, {111, "2e d3"}, {127, "5d dd"}, {88, "7b 58"},
        {113, "ad a0"}, {40, "de 28"}, {86, "e2 56"},  {124, "dc fc"},
    };

    for (const auto& row : rows) {
        type(row.code);
        expectTold({std::string("down ") + row.vkAndScan, std::string("up ") + row.vkAndScan});
    }
    type(68);
    expectTold({"sysdown 79 44", "sysup 79 44"});
}

TEST_F(XWindow, KeysWithAltAreTheSystemsUnlessControlIsHeldToo) {
    takeFocus();
    mDisplay.key(56, true);
    type(62);
    mDisplay.key(56, false);
    expectTold({"sysdown 12 38", "sysdown 73 3e", "sysup 73 3e", "sysup 12 38"});
    mDisplay.key(29, true);
    mDisplay.key(56, true);
    type(30);
    expectTold({"down 11 1d", "down 12 38", "down 41 1e", "up 41 1e"});
}

TEST_F(XWindow, HeldKeyRepeatsWithoutGoingUp) {
    takeFocus();
    mDisplay.key(30, true);
    ASSERT_TRUE(comes("again 41 1e", 3));
    mDisplay.key(30, false);
    ASSERT_TRUE(comes("up 41 1e"));
    const std::lock_guard lock(mMutex);
    EXPECT_EQ(mTold.front(), "down 41 1e");
    EXPECT_EQ(std::count(mTold.begin(), mTold.end(), "up 41 1e"), 1);
}

TEST_F(XWindow, LayoutsDecideTheVirtualKeysAndTheCharacters) {
    takeFocus();

    const struct {
        const char* layout;
        std::uint8_t code;
        std::uint32_t vk;
        const char* down;
        char16_t plain;
        char16_t withShift;
    } rows[] = {
        {"de", 21, 'Z', "down 5a 15", u'z', u'Z'},     {"fr", 16, 'A', "down 41 10", u'a', u'A'},
        {"fr", 3, '2', "down 32 03", u'\u00E9', u'2'}, {"fr", 50, 0xBC, "down bc 32", u',', u'?'},
        {"fr", 26, 0xDB, "down db 1a", 0, 0},          {"us", 16, 'Q', "down 51 10", u'q', u'Q'},
    };

    for (const auto& row : rows) {
        SCOPED_TRACE(row.down);
        mDisplay.setLayout(row.layout);
        mDisplay.key(row.code, true);
        EXPECT_TRUE(comes(row.down));
        EXPECT_EQ(mContext->convertVKCodeToUnicode(row.vk), row.plain);
        mDisplay.key(42, true);
        EXPECT_TRUE(comes("down 10 2a"));
        EXPECT_EQ(mContext->convertVKCodeToUnicode(row.vk), row.withShift);
        mDisplay.key(42, false);
        mDisplay.key(row.code, false);
        EXPECT_TRUE(comes("up" + std::string(row.down).substr(4)));
        const std::lock_guard lock(mMutex);
        mTold.clear();
    }
}

TEST_F(XWindow, AltGrIsRightAltAndGivesItsSigns) {
    mDisplay.setLayout("de");
    takeFocus();
    mDisplay.key(100, true);
    mDisplay.key(16, true);
    expectTold({"down 12 b8", "down 51 10"});
    EXPECT_EQ(mContext->convertVKCodeToUnicode('Q'), u'@');
}

TEST_F(XWindow, ButtonsWheelAndMovesCome) {
    mDisplay.moveBy(5, 6);
    expectTold({"move 15 26"});
    mDisplay.button(1, true);
    expectTold({"513 15 26", "focus"});
    mDisplay.button(1, false);
    expectTold({"514 15 26"});
    for (const std::uint8_t button : {3, 2, 4, 5, 6, 7})
        click(button);
    expectTold({"516 15 26", "517 15 26", "519 15 26", "520 15 26", "522 120 115 226",
                "522 -120 115 226", "526 -120 115 226", "526 120 115 226"});
}

TEST_F(XWindow, FocusThatLeavesAndReturnsAtOnceIsToldTwice) {
    const xcb_window_t other = mDisplay.makeWindow(600, 200);
    mDisplay.button(1, true);
    expectTold({"513 10 20", "focus"});
    const xcb_window_t child = mDisplay.focused();
    ASSERT_NE(child, mHost);
    mDisplay.focus({other, child});
    expectTold({"blur", "focus"});
    // Within the host's window nothing changes.
    mDisplay.focus({mHost, child, mHost, child, other});
    expectTold({"blur"});
}

TEST_F(XWindow, RawMotionReachesTheSurfaceThatAskedLast) {
    const ContextPtr first = surface(mDisplay.makeWindow(600, 200), true);
    ContextPtr second = surface(mDisplay.makeWindow(600, 600), true);
    first->onRelativeMouseMove.disconnect_all_slots();
    mDisplay.moveBy(-70, 0);
    expectTold({"raw -70 0"});
    PointerApi::MouseInput input{-3, 4, 0, PointerApi::kMove, 0, 0};
    EXPECT_EQ(PointerApi::system().sendInput(input), 0U);
    expectTold({"raw -3 4"});
}

TEST_F(XWindow, LockedCursorStaysInTheSurfaceUntilTheFocusIsLost) {
    const xcb_window_t other = mDisplay.makeWindow(600, 200);
    takeFocus();
    mContext->lockSystemMouse();
    mDisplay.moveBy(1000, 1000);
    EXPECT_TRUE(comes("move 379 279"));
    mDisplay.focus({other});
    EXPECT_TRUE(comes("blur"));
    mDisplay.moveBy(15, 0);
    EXPECT_TRUE(comes("move 394 279"));
}

TEST_F(XWindow, CapturedMouseIsHeardOutsideToo) {
    mContext->setCaptureMouseExclusively();
    mDisplay.moveBy(-40, -50);
    EXPECT_TRUE(comes("move -30 -30"));
    mContext->releaseCaptureMouseExclusively();
    mDisplay.moveBy(-1, -1);
    mDisplay.moveBy(41, 51);
    EXPECT_TRUE(comes("move 10 20"));
    const std::lock_guard lock(mMutex);
    EXPECT_FALSE(std::count(mTold.begin(), mTold.end(), "move -31 -31"));
}

TEST_F(XWindow, SurfaceIsDestroyedWithItsWindowOrItsServer) {
    const xcb_window_t other = mDisplay.makeWindow(600, 200);
    const ContextPtr second = surface(other);
    mDisplay.destroyWindow(other);
    expectTold({"destroyed"});
    const xcb_window_t gone = mDisplay.makeWindow(600, 600);
    mDisplay.destroyWindow(gone);
    EXPECT_EQ(whyNot([&] { surface(gone); }),
              "The window can't be an input surface: There is no such window.");
    mDisplay.kill();
    expectTold({"destroyed"});
    IInputContext::Rect rect{};
    EXPECT_FALSE(mContext->getInputSurfaceRectWithinScreen(rect));
    EXPECT_TRUE(whyNot([&] { surface(gone); }).ends_with("can't be opened."));
    ::unsetenv("DISPLAY");
    EXPECT_TRUE(whyNot([&] { surface(gone); }).ends_with("DISPLAY is not set."));
}

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

TEST_F(XWindow, ThousandSurfacesLeaveNoThreadAndNoFile) {
    mContext.reset();
    const auto left = [] { return entriesOf("/proc/self/task") + entriesOf("/proc/self/fd"); };
    for (int i = 0; i < 50 && entriesOf("/proc/self/task") > 1; ++i)
        std::this_thread::yield();
    const std::size_t before = left();
    for (int i = 0; i < 1000; ++i)
        surface(mHost, true);
    const auto end = std::chrono::steady_clock::now() + kComesWithin;
    while (left() > before && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_LE(left(), before);
}

TEST(XLibrary, MissingFileIsNamed) {
    auto files = XLibrary::kFiles;
    files[1] = "libabsent.so";
    EXPECT_EQ(XLibrary().load(files), std::size_t{1});
    const auto error = static_cast<WindowApi::Error>(XError::NoLibrary) + 1;
    EXPECT_EQ(xErrorText(error), "The machine lacks libxcb-xinput.so.0.");
}

} // namespace
} // namespace orbelantine::test
