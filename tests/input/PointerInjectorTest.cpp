#include "core/common/OSAL.h"
#include "input/pointer/WindowsPointerInjector.h"
#include "tests/input/FakeWindowApi.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <limits>

namespace orbelantine {
namespace {

using test::Names;

struct FakePointer final : PointerApi {
    test::Journal journal;
    Error error = 0;

    Error sendInput(const MouseInput& i) override {
        journal.note(test::spaced(i.dx, i.dy, i.mouseData, i.flags, i.time, i.extraInfo));
        return error;
    }
};

TEST(PointerInjectorTest, EachFormIsOneRecordOfItsFlag) {
    using Limits = std::numeric_limits<std::int16_t>;
    FakePointer pointer;
    WindowsPointerInjector injector(pointer);
    injector.injectMouseInput(Limits::min(), Limits::max());
    injector.injectMouseInput(IPointerInjector::LeftDown());
    injector.injectMouseInput(IPointerInjector::LeftUp());
    injector.injectMouseInput(IPointerInjector::RightDown());
    injector.injectMouseInput(IPointerInjector::RightUp());
    EXPECT_EQ(pointer.journal.take(), (Names{"-32768 32767 0 1 0 0", "0 0 0 2 0 0", "0 0 0 4 0 0",
                                             "0 0 0 8 0 0", "0 0 0 16 0 0"}));
}

TEST(PointerInjectorTest, AFailureIsLoggedAndNotTriedAgain) {
    FakePointer pointer;
    pointer.error = 5;
    test::CapturedLog log(kLogError);
    WindowsPointerInjector injector(pointer);
    injector.injectMouseInput(IPointerInjector::LeftDown());
    EXPECT_EQ(pointer.journal.take().size(), 1U);
    EXPECT_EQ(
        log.missing({"WindowsPointerInjector::injectMouseInput() Unable to inject mouse input "
                     "event. Error: 5"}),
        Names{});
}

TEST(PointerInjectorTest, TheFactoryMakesIt) {
    const auto made =
        osalCreate<IPointerInjector>(OSALFactory::instance(), "IPointerInjector", KVStore(), "");
    EXPECT_NE(dynamic_cast<WindowsPointerInjector*>(made.get()), nullptr);
}

} // namespace
} // namespace orbelantine
