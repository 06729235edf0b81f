#include "input/window/WindowsHwndInputContext.h"

#include "tests/input/FakeWindowApi.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

namespace orbelantine {
namespace {

using test::FakeWindowApi;
using test::Names;
using test::spaced;
using Context = boost::shared_ptr<WindowsHwndInputContext>;

/// The high word of a key message, for a first press.
WindowMessage::Long keyFlags(std::uint32_t scanCode, std::uint32_t repeatCount = 1) {
    return static_cast<WindowMessage::Long>(scanCode << 16 | repeatCount);
}

struct WindowContextTest : testing::Test {
    test::Journal journal;
    FakeWindowApi api{journal};

    /// One whose signals are written down as they come.
    Context make(bool useRawInput = false, bool mapImeKeys = false) {
        auto context = WindowsHwndInputContext::create(useRawInput, api.window, mapImeKeys, api);
        writeDown(context->onKeyDown, "down");
        writeDown(context->onKeyUp, "up");
        writeDown(context->onMouseClickDown, "press");
        writeDown(context->onMouseClickUp, "lift");
        writeDown(context->onAbsoluteMouseMove, "move");
        writeDown(context->onRelativeMouseWheel, "wheel");
        writeDown(context->onRelativeMouseMove, "delta");
        writeDown(context->onPointerDown, "pointer down");
        writeDown(context->onPointerUp, "pointer up");
        writeDown(context->onPointerUpdate, "pointer update");
        writeDown(context->onInputSurfaceLostFocus, "lost focus");
        writeDown(context->onInputSurfaceDestroyed, "destroyed");
        journal.take();
        return context;
    }

    template <class Signature>
    void writeDown(boost::signals2::signal<Signature>& signal, const char* name) {
        signal.connect([this, name](auto... values) { journal.note(spaced(name, values...)); });
    }

    /// What the message leads to.
    Names after(std::uint32_t message, WindowMessage::Word wParam = 0,
                WindowMessage::Long lParam = 0) {
        journal.take();
        api.send(message, wParam, lParam);
        return journal.take();
    }
};

TEST_F(WindowContextTest, EachMessageRaisesWhatItMeansAndIsPassedOnOrKept) {
    const Context context = make();
    api.pointerType = WindowApi::kPointerTypeTouch;
    api.raw = {WindowApi::kRawTypeMouse, 0, -4, 9};
    const WindowMessage::Long place = placeOf(-5, 40);

    const struct {
        std::uint32_t message;
        WindowMessage::Word wParam;
        WindowMessage::Long lParam;
        Names happens;
    } rows[] = {
        {1234, 5, 6, {"passed 1234 5 6"}},
        {7, 5, 6, {"passed 7 5 0"}},
        {8, 5, 6, {"lost focus", "passed 8 5 0"}},
        {32, 0, 0x2000001, {"default 32"}},
        {255, 0, 77, {"delta -4 9", "default 255"}},
        {256, 0x41, keyFlags(30, 3), {"down 65 30 3"}},
        {257, 0x41, keyFlags(30), {"up 65 30"}},
        {256, 0x73, keyFlags(62), {"down 115 62 1", spaced("passed 256 115", keyFlags(62))}},
        {257, 18, keyFlags(56), {"up 18 56", spaced("passed 257 18", keyFlags(56))}},
        {260, 0x41, keyFlags(30), {"down 65 30 1"}},
        {260, 164, keyFlags(56), {"down 164 56 1", spaced("passed 260 164", keyFlags(56))}},
        {261, 165, keyFlags(56), {"up 165 56", spaced("passed 261 165", keyFlags(56))}},
        {261, 0x5B, keyFlags(0x15B), {"up 91 219"}},
        {512, 0, place, {"move -5 40", spaced("passed 512 0", place)}},
        {513, 0, place, {"focus", "press 0 -5 40"}},
        {514, 0, place, {"lift 0 -5 40"}},
        {516, 0, place, {"focus", "press 1 -5 40"}},
        {517, 0, place, {"lift 1 -5 40"}},
        {522, 120 << 16, place, {"wheel 3 -5 40"}},
        {522, 0xFF880000, place, {"wheel -3 -5 40"}},
        {522, 2 << 16, place, {"wheel 2 -5 40"}},
        {526, 120 << 16, place, {}},
        {581, 0x20000003, place, {"pointer update 1 3 -5 40 1"}},
        {582, 4, place, {"pointer down 1 4 -5 40 0", spaced("passed 582 4", place)}},
        {583, 4, place, {"pointer up 1 4 -5 40 0", spaced("passed 583 4", place)}},
    };

    api.send(wm::kMouseMove, 0, placeOf(1, 1));
    for (const auto& row : rows)
        EXPECT_EQ(after(row.message, row.wParam, row.lParam), row.happens) << row.message;
    EXPECT_EQ(api.send(wm::kSetFocus), 55);
    EXPECT_EQ(api.send(wm::kLButtonDown), 0);
}

TEST_F(WindowContextTest, TheObserverSeesEveryMessageFirst) {
    const Context context = make();
    context->onMessage.connect([this](void* window, auto... values) {
        journal.note(spaced("seen", window == api.window, values...));
    });
    EXPECT_EQ(after(1234, 5, 6), (Names{"seen 1 1234 5 6", "passed 1234 5 6"}));
    EXPECT_EQ(after(257, 65, keyFlags(30)).front(), spaced("seen 1 257 65", keyFlags(30)));
}

TEST_F(WindowContextTest, AnExtendedKeyHas128MoreInItsScanCode) {
    const Context context = make();
    EXPECT_EQ(after(256, 17, keyFlags(0x11D)), Names{"down 17 157 1"});
    EXPECT_EQ(after(256, 17, keyFlags(0x100)), Names{"down 17 0 1"});
    const test::CapturedLog log(kLogError);
    // Bits 13 to 15 of the flags, and a scan code beyond 127.
    EXPECT_EQ(after(256, 17, keyFlags(0xE09D)), Names{"down 17 29 1"});
}

TEST_F(WindowContextTest, WhatStandsForAPenOrAFingerIsNoMouse) {
    const Context context = make();
    api.send(wm::kMouseMove, 0, placeOf(1, 1));
    api.extraInfo = 1;
    const WindowMessage::Long place = placeOf(2, 2);
    EXPECT_EQ(after(512, 0, place), Names{spaced("passed 512 0", place)});
    EXPECT_EQ(after(513, 0, place), Names{"focus"});
    EXPECT_EQ(after(514, 0, place), Names{});
    api.extraInfo = 0;
    EXPECT_EQ(after(512, 0, place).size(), 2U);
    EXPECT_EQ(after(512, 0, place), Names{spaced("passed 512 0", place)});
}

TEST_F(WindowContextTest, ASecondClickOfADoubleOneIsSwallowed) {
    const Context context = make();
    api.send(wm::kLButtonDown);
    api.send(wm::kLButtonUp);
    EXPECT_EQ(after(wm::kLButtonDblClk), Names{});
    EXPECT_EQ(after(wm::kLButtonUp), Names{});
    EXPECT_EQ(after(wm::kLButtonUp), Names{"lift 0 0 0"});
    api.send(wm::kLButtonDblClk);
    api.send(wm::kLButtonDown);
    EXPECT_EQ(after(wm::kLButtonUp), Names{"lift 0 0 0"});
}

TEST_F(WindowContextTest, OnlyDeltasOfAMouseAreTold) {
    const Context context = make();
    const Names nothing{"default 255"};
    api.raw = {1, 0, 2, 3};
    EXPECT_EQ(after(wm::kInput), nothing);
    api.raw = {WindowApi::kRawTypeMouse, WindowApi::kRawMoveAbsolute | 2, 2, 3};
    EXPECT_EQ(after(wm::kInput), nothing);
    api.raw.flags = 2;
    api.failing = "getRawInput";
    EXPECT_EQ(after(wm::kInput), nothing);
    api.failing = "";
    EXPECT_EQ(after(wm::kInput).front(), "delta 2 3");
}

TEST_F(WindowContextTest, APointerOfUnknownKindIsOnlyPassedOn) {
    const Context context = make();
    const test::CapturedLog log(kLogError);
    api.failing = "getPointerType";
    EXPECT_EQ(after(wm::kPointerDown, 4), Names{"passed 582 4 0"});
    EXPECT_EQ(after(wm::kPointerUpdate, 4), Names{});
    api.failing = "";
    for (const auto& [type, told] : {std::pair{3u, 0}, std::pair{2u, 1}, std::pair{4u, 2}}) {
        api.pointerType = type;
        EXPECT_EQ(after(wm::kPointerUpdate, 4), Names{spaced("pointer update", told, "4 0 0 0")});
    }
}

TEST_F(WindowContextTest, TheWinKeysAndAnInputMethodsKeysAreKept) {
    const Context context = make();
    test::CapturedLog log(kLogDebug);
    for (const std::uint32_t key : {0x5Bu, 0x5Cu, 229u}) {
        EXPECT_EQ(after(256, key, keyFlags(30)), Names{});
        EXPECT_EQ(after(257, key, keyFlags(30)), Names{});
        EXPECT_EQ(log.missing(
                      {"onWndKeyDown() Ignoring Win/IME key", "onWndKeyUp: Ignoring Win/IME key"}),
                  Names{});
    }
}

TEST_F(WindowContextTest, AnInputMethodsKeyIsTakenForTheOneBehindIt) {
    const Context context = make(false, true);
    EXPECT_EQ(after(256, 229, keyFlags(30)), Names{"down 65 30 1"});
    api.behindScanCode = vk::kF4;
    EXPECT_EQ(after(257, 229, keyFlags(62)),
              (Names{"up 115 62", spaced("passed 257 115", keyFlags(62))}));
    std::uint32_t asked = 0;
    context->onPreKeyDown.connect([&](std::uint32_t vk, std::uint32_t, std::int32_t) {
        asked = vk;
        return true;
    });
    EXPECT_EQ(after(256, 229, keyFlags(62)), Names{});
    EXPECT_EQ(asked, vk::kF4);
}

TEST_F(WindowContextTest, AKeyThatIsHandledOutsideIsNotRaised) {
    const Context context = make();
    bool handled = true;
    context->onPreKeyDown.connect([&](std::uint32_t vk, std::uint32_t scan, std::int32_t repeats) {
        journal.note(spaced("pre down", vk, scan, repeats));
        return handled;
    });
    context->onPreKeyUp.connect([&](std::uint32_t vk, std::uint32_t scan) {
        journal.note(spaced("pre up", vk, scan));
        return handled;
    });
    EXPECT_EQ(after(256, 65, keyFlags(30, 2)), Names{"pre down 65 30 2"});
    EXPECT_EQ(after(257, 18, keyFlags(56)),
              (Names{"pre up 18 56", spaced("passed 256 18", keyFlags(56))}));
    EXPECT_EQ(after(256, 0x5B, keyFlags(0x15B)), Names{"pre down 91 219 1"});
    handled = false;
    EXPECT_EQ(after(256, 65, keyFlags(30)), (Names{"pre down 65 30 1", "down 65 30 1"}));
    EXPECT_EQ(after(257, 65, keyFlags(30)), (Names{"pre up 65 30", "up 65 30"}));
}

TEST_F(WindowContextTest, KeysWaitForTheEndOfTheirPause) {
    const Context context = make();
    EXPECT_EQ(context->pauseKeyInjection(), 1);
    EXPECT_EQ(after(256, 65, keyFlags(30)), Names{});
    EXPECT_EQ(after(257, 65, keyFlags(30)), Names{});
    EXPECT_EQ(context->pauseKeyInjection(), 2);
    EXPECT_EQ(after(256, 66, keyFlags(48)), Names{});
    // System keys don't wait.
    EXPECT_EQ(after(260, 67, keyFlags(46)), Names{"down 67 46 1"});
    context->resumeKeyInjection(1);
    EXPECT_EQ(journal.take(), (Names{"down 65 30 1", "up 65 30"}));
    // One pause is left, under the number of the second.
    EXPECT_EQ(after(257, 66, keyFlags(48)), Names{});
    context->resumeKeyInjection(2);
    EXPECT_EQ(journal.take(), (Names{"down 66 48 1", "up 66 48"}));
    EXPECT_EQ(after(256, 65, keyFlags(30)), Names{"down 65 30 1"});
}

TEST_F(WindowContextTest, ThePauseOfAnUnknownNumberEndsAllTheSame) {
    const Context context = make();
    const std::int32_t pause = context->pauseKeyInjection();
    api.send(256, 65, keyFlags(30));
    context->resumeKeyInjection(pause + 1);
    EXPECT_EQ(after(257, 65, keyFlags(30)), Names{"up 65 30"});
    context->resumeKeyInjection(pause);
    EXPECT_EQ(journal.take(), Names{"down 65 30 1"});
    // The count is below nothing now: the next pause only makes up for it.
    context->pauseKeyInjection();
    EXPECT_EQ(after(257, 65, keyFlags(30)), Names{"up 65 30"});
}

TEST_F(WindowContextTest, ALockedCursorIsKeptInsideAndHiddenUntilItIsUnlocked) {
    const Context context = make();
    context->lockSystemMouse();
    EXPECT_EQ(journal.take(), (Names{"clip 320 220 380 280", "post 32 1 2097153"}));
    EXPECT_EQ(api.send(wm::kSetCursor, 0, 0x200001), 1);
    EXPECT_EQ(journal.take(), Names{"hide"});
    EXPECT_EQ(after(wm::kSetCursor, 0, 0x200002), Names{"default 32"});
    context->unlockSystemMouse(-1, 5);
    EXPECT_EQ(journal.take(), Names{"unclip"});
    EXPECT_EQ(after(wm::kSetCursor, 0, 0x200001), Names{"default 32"});
    context->unlockSystemMouse(0, 5);
    EXPECT_EQ(journal.take(), (Names{"unclip", "cursor 0 5"}));
    test::CapturedLog log(kLogDebug);
    api.failing = "clipCursor";
    context->lockSystemMouse();
    EXPECT_EQ(journal.take().size(), 2U);
    EXPECT_TRUE(log.missing({"lockSystemMouse() Unable to clip the cursor. Error: 1400"}).empty());
}

TEST_F(WindowContextTest, QuestionsAreAnsweredByTheWindow) {
    const Context context = make();
    IInputContext::Point point{310, 205};
    EXPECT_TRUE(context->screenToInputSurface(point));
    EXPECT_EQ(spaced(point.x, point.y), "10 5");
    EXPECT_TRUE(context->inputSurfaceToScreen(point));
    EXPECT_EQ(spaced(point.x, point.y), "310 205");
    IInputContext::Rect rect{};
    EXPECT_TRUE(context->getInputSurfaceRectWithinScreen(rect));
    EXPECT_EQ(spaced(rect.left, rect.top, rect.right, rect.bottom), "0 0 100 100");
    EXPECT_EQ(context->getSystemMouseSpeed(), 3);
    context->setCaptureMouseExclusively();
    context->releaseCaptureMouseExclusively();
    EXPECT_EQ(journal.take(), (Names{"capture", "release"}));
    api.failing = "convert";
    EXPECT_FALSE(context->screenToInputSurface(point));
    EXPECT_FALSE(context->inputSurfaceToScreen(point));
    api.failing = "getMouseSpeed";
    EXPECT_EQ(context->getSystemMouseSpeed(), 10);
}

TEST_F(WindowContextTest, AKeyGivesACharacterIfItGivesExactlyOne) {
    const Context context = make();
    for (const auto& [typed, expected] : {std::pair{u"é", 0xE9}, {u"", 0}, {u"ab", 0}}) {
        api.typed = typed;
        EXPECT_EQ(context->convertVKCodeToUnicode(0x32), expected);
    }
    EXPECT_EQ(journal.take().front(), "toUnicode 50 51");
}

TEST_F(WindowContextTest, ADestroyedWindowIsGivenBackAtOnce) {
    Context context = make();
    EXPECT_EQ(after(wm::kDestroy), Names{"destroyed"});
    EXPECT_EQ(api.procedure, FakeWindowApi::kHosts);
    // What comes later finds no context.
    EXPECT_EQ(after(wm::kKeyDown, 65), Names{"default 256"});
    const auto second = WindowsHwndInputContext::create(false, api.window, false, api);
    context.reset();
    EXPECT_EQ(api.procedure, FakeWindowApi::kOwn);
}

TEST_F(WindowContextTest, ItsEndGivesTheWindowBackAndDisconnectsItsSlots) {
    Context context = make();
    const boost::signals2::connection slot = context->onTextComposed.connect([](const auto&) {});
    EXPECT_EQ(api.procedure, FakeWindowApi::kOwn);
    context.reset();
    EXPECT_EQ(api.procedure, FakeWindowApi::kHosts);
    EXPECT_FALSE(slot.connected());
}

TEST_F(WindowContextTest, ASlotMayLetGoOfItsContext) {
    Context context = make();
    context->onMouseClickDown.connect([&](auto...) { context.reset(); });
    EXPECT_EQ(after(wm::kRButtonDown), (Names{"focus", "press 1 0 0"}));
    EXPECT_EQ(api.procedure, FakeWindowApi::kHosts);
    context = make();
    context->onKeyDown.connect([&](auto...) { context.reset(); });
    const std::int32_t pause = context->pauseKeyInjection();
    api.send(wm::kKeyDown, 65, keyFlags(30));
    api.send(wm::kKeyUp, 65, keyFlags(30));
    context->resumeKeyInjection(pause);
    EXPECT_EQ(api.procedure, FakeWindowApi::kHosts);
}

TEST_F(WindowContextTest, AMirroredWindowIsSetRight) {
    api.style = 0x400100;
    const Context context = make();
    EXPECT_EQ(api.style, 0x100);
}

TEST_F(WindowContextTest, AWindowThatCantBeTakenIsRefusedWithASentence) {
    const auto refusal = [this] {
        try {
            make();
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    api.failing = "setProcedure";
    EXPECT_EQ(refusal(), "The window can't be an input surface: error 1400");
    api.failing = "";
    const Context context = make();
    EXPECT_EQ(refusal().substr(0, 39), "The window is an input surface already:");
    EXPECT_EQ(after(wm::kMouseHWheel), Names{});
}

TEST_F(WindowContextTest, TheLastContextWithRawInputEndsItsRegistration) {
    Context first = WindowsHwndInputContext::create(true, api.window, false, api);
    EXPECT_EQ(journal.take(), Names{"raw 1 2 256 1"});
    FakeWindowApi other(journal);
    Context second = WindowsHwndInputContext::create(true, other.window, false, other);
    Context without = WindowsHwndInputContext::create(false, nullptr, false, api);
    journal.take();
    without.reset();
    first.reset();
    EXPECT_EQ(journal.take(), Names{});
    second.reset();
    EXPECT_EQ(journal.take(), Names{"raw 1 2 1 0"});
    test::CapturedLog log(kLogError);
    api.failing = "registerRawInputDevice";
    first = WindowsHwndInputContext::create(true, api.window, false, api);
    EXPECT_EQ(log.missing({"registerInput() RegisterRawInputDevices() failed. Error: 1400"}),
              Names{});
    EXPECT_EQ(after(wm::kKeyDown, 65, keyFlags(30)), Names{});
    first.reset();
    EXPECT_EQ(journal.take(), Names{"raw 1 2 1 0"});
}

} // namespace
} // namespace orbelantine
