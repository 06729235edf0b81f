#include "input/sources/GenericInputSource.h"

#include "avstack/InputContextKey.h"
#include "avstack/InputFormat.h"
#include "input/context/InputContextComposite.h"
#include "input/sources/InputTypeFlags.h"
#include "tests/input/FakeInputContext.h"
#include "tests/input/RecordingTarget.h"
#include "tests/input/Standins.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace orbelantine {
namespace {

using test::FactoryOverride;
using test::FakeMouseSource;
using test::InputFrame;
using test::kMarkerUp;

struct Source {
    boost::shared_ptr<IInputContext> context;
    boost::shared_ptr<test::RecordingTarget> target = boost::make_shared<test::RecordingTarget>();
    boost::shared_ptr<IInputSource> source;

    Source(boost::shared_ptr<IInputContext> surface, const InputFormat& format, bool apple = false,
           const char* osVersion = "")
        : context(std::move(surface)) {
        KVStore store;
        setInputContext(store, context);
        store.setBoolAt("apple", apple);
        store.setStringAt("osVersion", osVersion);
        source = osalCreate<IInputSource, InputFormat>(OSALFactory::instance(), "IInputSource",
                                                       store, "", format);
        source->registerTarget(target);
    }
};

struct GenericInputSourceTest : testing::Test {
    boost::shared_ptr<test::FakeInputContext> context =
        boost::make_shared<test::FakeInputContext>();
    boost::shared_ptr<FakeMouseSource> relative = boost::make_shared<FakeMouseSource>();
    boost::shared_ptr<FakeMouseSource> absolute = boost::make_shared<FakeMouseSource>();
    FactoryOverride<IMouseSource> relatives{"RelativeMouseSource", relative};
    FactoryOverride<IMouseSource> absolutes{"AbsoluteMouseSource", absolute};
};

TEST_F(GenericInputSourceTest, FlagsAndDeviceTypeChooseTheMouse) {
    const std::string absoluteSaid = "debug createMouseSource() using absolute mouse";
    const std::string relativeSaid = "debug createMouseSource() using relative mouse";
    const std::string noneSaid = "error createMouseSource() No suitable mouse source";
    for (const auto& [typeFlags, hidType, said] : {std::tuple{1U, 2U, absoluteSaid},
                                                   {3U, 2U, absoluteSaid},
                                                   {2U, 1U, absoluteSaid},
                                                   {2U, 2U, relativeSaid},
                                                   {6U, 2U, relativeSaid},
                                                   {4U, 2U, noneSaid}}) {
        const auto device = test::hidDeviceOfType(hidType);
        relative->calls.clear();
        absolute->calls.clear();
        const Source made(context, InputFormat(3, 2, 1, typeFlags));
        test::CapturedLog log(kLogDebug, "orbelantine::GenericInputSource::");
        made.source->start();
        EXPECT_EQ(std::ranges::count(log.told(), said), 1) << typeFlags;
        context->onAbsoluteMouseMove(1, 2);
        made.source->stop();
        context->onAbsoluteMouseMove(3, 4);
        const char* used = "registerTarget 1, start 1, mouseMove 1 2 0, registerTarget 0, stop";
        EXPECT_EQ(absolute->calls, said == absoluteSaid ? used : "");
        EXPECT_EQ(relative->calls, said == relativeSaid ? used : "");
    }
    const Source onlyKeys(context, InputFormat(0, 2, 1, 1));
    onlyKeys.source->start();
    EXPECT_TRUE(context->onMouseClickDown.empty() && context->onPointerUpdate.empty());
    EXPECT_FALSE(context->onKeyDown.empty() || context->onKeyUp.empty());
}

void perform(const std::string& script, test::FakeInputContext& from, IInputSource& source) {
    const auto pointer = [](auto& signal, int offset) {
        return [&signal, offset](int type, int primary, int, int) {
            signal(static_cast<IInputContext::ePointerType>(type), 7, 110 + offset, 220 + offset,
                   primary != 0);
        };
    };
    const test::Events events{
        {"move", [&](int x, int y, int, int) { from.onAbsoluteMouseMove(x, y); }},
        {"button",
         [&](int button, int down, int x, int y) {
             (down != 0 ? from.onMouseClickDown : from.onMouseClickUp)(
                 static_cast<IInputContext::eMouseButton>(button), x, y);
         }},
        {"raw", [&](int dx, int dy, int, int) { from.onRelativeMouseMove(dx, dy); }},
        {"wheel", [&](int delta, int x, int y, int) { from.onRelativeMouseWheel(delta, x, y); }},
        {"down", pointer(from.onPointerDown, 0)},
        {"update", pointer(from.onPointerUpdate, 1)},
        {"up", pointer(from.onPointerUp, 2)},
        {"unfocus", [&](auto...) { from.onInputSurfaceLostFocus(); }},
        {"destroy", [&](auto...) { from.onInputSurfaceDestroyed(); }},
        {"refresh", [&](auto...) { source.refresh(); }},
        {"start", [&](auto...) { source.start(); }},
    };
    test::perform(script, events);
}

TEST_F(GenericInputSourceTest, EventsReachTheMouseSource) {
    struct Case {
        const char* script;
        const char* calls;
        std::uint32_t touchType = 1;
        bool apple = false;
        bool surfaceCoordinates = false;
    };

    const char* const touched = "touch 1 110 220 7 0, touchMove 111 221 7, touch 0 112 222 7 0";
    const Case cases[] = {
        {"start, move 5 9, move 5 9, move 6 9, move 5 9",
         "mouseMove 5 9 0, mouseMove 6 9 0, mouseMove 5 9 0"},
        {"start, move -1 -1", ""},
        {"start, move -1 0", "mouseMove -1 0 0"},
        {"start, refresh, move 1 1, button 0 1 3 4, button 0 0 3 4",
         "mouseMove 1 1 0, mouseLButton 1 3 4 0 1, mouseLButton 0 3 4 0 0"},
        {"start, refresh, button 1 1 3 4, button 1 0 3 4",
         "mouseRButton 1 3 4 1, mouseRButton 0 3 4 0"},
        {"start, refresh, update 1 1, down 1 1, up 1 1",
         "touchMove 111 221 7, touch 1 110 220 7 1, touch 0 112 222 7 0"},
        {"refresh, start, button 0 1 3 4", "mouseLButton 1 3 4 0 0"},
        {"start, button 2 1 3 4, button -1 0 3 4", ""},
        {"start, raw -3 4, raw -3 4", "rawMouseMove -3 4, rawMouseMove -3 4"},
        {"start, wheel 10 5 6, wheel 1, wheel 0, wheel -10",
         "mouseWheel 1 5 6 3, mouseWheel 1 0 0 1, mouseWheel 0 0 0 0, mouseWheel 0 0 0 -3"},
        {"start, wheel 10, wheel -1", "mouseWheel 0 0 0 -3, mouseWheel 1 0 0 1", 1, true},
        {"start, unfocus, destroy", "killFocus"},
        {"start, down 1 1, update 1 1, up 1 1", touched},
        {"start, down 0 1, update 0 1, up 0 1", touched},
        {"start, down 2 1, update 2 1, up 2 1", "", 2},
        {"start, down 1 0, update 1 0, up 1 0", ""},
        {"start, down 1 0, update 1 0, up 1 0", touched, 2},
        {"start, down 1 0, update 1 0, up 1 0", "", 3},
        {"start, down 1 1, update 1 1, up 1 1", touched, 3},
        {"start, down 1 1, update 1 1, up 1 1", "", 0},
        {"start, down 1 1, update 1 1", "touch 1 10 20 7 0, touchMove 11 21 7", 1, false, true},
    };
    for (const Case& each : cases) {
        const Source made(context, InputFormat(3, 2, each.touchType, 1), each.apple);
        absolute->absolute = each.surfaceCoordinates;
        absolute->calls.clear();
        perform(each.script, *context, *made.source);
        const std::string started = "registerTarget 1, start 1";
        EXPECT_EQ(absolute->calls, started + (*each.calls != '\0' ? ", " : "") + each.calls)
            << each.script;
    }
}

TEST_F(GenericInputSourceTest, LogTellsClicksAndLostPointers) {
    const Source made(context, InputFormat(3, 2, 1, 1));
    absolute->absolute = true;
    made.source->start();
    test::CapturedLog log(kLogDebug, "orbelantine::GenericInputSource::");
    perform("button 0 1 3 4, button 1 0 3 4, up 1 1", *context, *made.source);
    context->answers = false;
    perform("update 1 1", *context, *made.source);
    EXPECT_EQ(log.told(),
              (test::Texts{"debug onLButton() touch: 0, down: 1, x: 3, y: 4, id: 0",
                           "debug onRButton() down:false.",
                           "debug processPointerEvent() touch: 1, down: 0, x: 12, y: 22, id: 7",
                           "error processPointerEvent() Unable to get pointer client position."}));
}

TEST_F(GenericInputSourceTest, WithoutASurfaceOrAKeyboardNothingStarts) {
    const Source blind({}, InputFormat(3, 2, 1, 1));
    blind.source->start();
    blind.source->stop();
    const Source made(context, InputFormat(3, 2, 1, 1), false, "Nougat");
    EXPECT_THROW(made.source->start(), std::invalid_argument);
    context->onInputSurfaceLostFocus();
    made.source->stop();
    EXPECT_TRUE(context->onInputSurfaceLostFocus.empty());
    EXPECT_EQ(absolute->calls, "");
}

TEST_F(GenericInputSourceTest, FrameOfAnotherElementGoesOn) {
    const Source made(context, InputFormat(0));
    made.source->onFrame(boost::make_shared<IInputMediaBufferKeyboard>(1, 0, 2, false));
    EXPECT_EQ(
        made.target->takeUpTo({.mediaType = 9, .ch = 1, .extra = 2, .networkOrder = false}).size(),
        1U);
}

/// With the mouse sources of the product.
void raceWithStops(std::uint32_t mouseFlag, int restarts) {
    const auto device = test::hidDeviceOfType(2);
    const auto surface = boost::make_shared<test::FakeInputContext>();
    const auto pen = boost::make_shared<test::FakeInputContext>();
    const auto composite = boost::make_shared<InputContextComposite>();
    composite->setMainInputContext(surface);
    composite->addSecondaryContext("pen", pen);
    Source made(composite, InputFormat(3, 2, 1, mouseFlag), false, "8.0");
    std::atomic<bool> done = false;
    const auto repeat = [&](auto act) {
        return [&done, act] {
            for (int i = 0; !done; ++i)
                act(i);
        };
    };
    std::thread window(repeat([&](int i) {
        surface->onLogicalDimensionsChanged(1080, 2340, i % 2 + 1, 0);
        surface->onRotationChanged(i % 4 + 1);
        surface->onAbsoluteMouseMove(i, 1);
        surface->simulateClick(i, 2);
        surface->onRelativeMouseMove(5, i % 3);
        surface->onRelativeMouseWheel(i, 3, 3);
    }));
    std::thread penWindow(repeat([&](int i) {
        pen->onPointerDown(IInputContext::PointerPen, 1, i, 4, true);
        pen->onPointerUp(IInputContext::PointerPen, 1, i, 4, true);
        made.source->refresh();
    }));
    std::thread keyboard(repeat([&](int i) {
        const auto code = static_cast<std::uint32_t>(i % 90 + 1);
        surface->simulateKey(i % 3 != 0, code, code);
        if (i % 50 == 0)
            surface->onInputSurfaceLostFocus();
    }));
    for (int i = 0; i < restarts; ++i) {
        EXPECT_EQ(made.target->take(), std::vector<InputFrame>());
        made.source->start();
        EXPECT_TRUE(made.target->awaitMouse());
        made.source->stop();
        (void)made.target->take();
    }
    done = true;
    for (std::thread* thread : {&window, &penWindow, &keyboard})
        thread->join();
    made.source->start();
    surface->simulateKey(true, kMarkerUp.ch, kMarkerUp.ch);
    surface->simulateKey(false, kMarkerUp.ch, kMarkerUp.ch);
    EXPECT_FALSE(made.target->takeUpTo(kMarkerUp).empty());
    // It goes with its events under way, without a stop.
    std::thread last([&] { surface->onAbsoluteMouseMove(9, 9); });
    made.source.reset();
    last.join();
    EXPECT_TRUE(composite->onKeyDown.empty());
}

TEST(GenericInputSource, WindowsKeyboardHostAndStopMayRace) {
    raceWithStops(kAbsoluteInput, 50);
    raceWithStops(kRelativeInput, 5);
}

} // namespace
} // namespace orbelantine
