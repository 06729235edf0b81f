#include "input/context/InputContextComposite.h"

#include "tests/input/FakeInputContext.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <tuple>

namespace orbelantine {
namespace {

using test::FakeInputContext;
using Strings = std::vector<std::string>;

struct InputContextCompositeTest : testing::Test {
    boost::shared_ptr<FakeInputContext> main = boost::make_shared<FakeInputContext>();
    boost::shared_ptr<FakeInputContext> other = boost::make_shared<FakeInputContext>();
    InputContextComposite composite;

    /// How many events come out when each surface raises one.
    int heardOf(const std::vector<boost::shared_ptr<FakeInputContext>>& surfaces) {
        int heard = 0;
        const boost::signals2::scoped_connection slot =
            composite.onRotationChanged.connect([&heard](std::int32_t) { ++heard; });
        for (const auto& surface : surfaces)
            surface->onRotationChanged(1);
        return heard;
    }
};

/// An event of `from` comes out of `to` once, with the same values.
template <class Signal, class... Values>
void expectRelay(IInputContext& from, IInputContext& to, Signal IInputContext::*signal,
                 Values... values) {
    std::vector<std::tuple<Values...>> relayed;
    const boost::signals2::scoped_connection slot =
        (to.*signal).connect([&](Values... each) { relayed.emplace_back(each...); });
    (from.*signal)(values...);
    EXPECT_EQ(relayed, (std::vector<std::tuple<Values...>>{{values...}}));
}

TEST_F(InputContextCompositeTest, EveryEventOfEverySurfaceIsRaisedAgain) {
    using Context = IInputContext;
    composite.setMainInputContext(main);
    composite.addSecondaryContext("pen", other);
    for (const auto& from : {main, other}) {
        const auto relays = [&](auto... event) { expectRelay(*from, composite, event...); };
        relays(&Context::onKeyDown, 1u, 2u, -3);
        relays(&Context::onKeyUp, 4u, 5u);
        relays(&Context::onMouseClickDown, Context::MouseButtonRight, 6, 7);
        relays(&Context::onMouseClickUp, Context::MouseButtonLeft, 8, -9);
        relays(&Context::onAbsoluteMouseMove, 10, 11);
        relays(&Context::onRelativeMouseWheel, -3, 12, 13);
        relays(&Context::onRelativeMouseMove, 14, 15);
        relays(&Context::onPointerDown, Context::PointerTouch, 16u, 17, 18, true);
        relays(&Context::onPointerUp, Context::PointerPen, 19u, 20, 21, false);
        relays(&Context::onPointerUpdate, Context::PointerOther, 22u, 23, 24, true);
        relays(&Context::onInputSurfaceLostFocus);
        relays(&Context::onInputSurfaceDestroyed);
        relays(&Context::onLogicalDimensionsChanged, 25, 26, 0.5, 27);
        relays(&Context::onRotationChanged, 4);
        relays(&Context::onTextComposed, std::wstring(L"\u00e9"));
    }
}

TEST_F(InputContextCompositeTest, QuestionsGoToTheMainSurfaceAlone) {
    main->mouseSpeed = 17;
    main->simulateCharacter(65, L'a');
    composite.setMainInputContext(main);
    composite.addSecondaryContext("pen", other);
    EXPECT_EQ(composite.getSystemMouseSpeed(), 17);
    EXPECT_EQ(composite.convertVKCodeToUnicode(65), L'a');
    EXPECT_EQ(composite.mapVK(IInputContext::KeySystem), 91u);
    EXPECT_EQ(composite.mapScan(IInputContext::KeyControl), 29u);
    IInputContext::Point point{5, 6};
    EXPECT_TRUE(composite.inputSurfaceToScreen(point));
    EXPECT_EQ(std::pair(point.x, point.y), std::pair(105, 206));
    EXPECT_TRUE(composite.screenToInputSurface(point));
    EXPECT_EQ(std::pair(point.x, point.y), std::pair(5, 6));
    IInputContext::Rect rect{};
    EXPECT_TRUE(composite.getInputSurfaceRectWithinScreen(rect));
    EXPECT_EQ(rect.bottom, 700);
    main->answers = false;
    EXPECT_FALSE(composite.screenToInputSurface(point));
    composite.lockSystemMouse();
    composite.unlockSystemMouse();
    composite.unlockSystemMouse(3, 4);
    composite.setCaptureMouseExclusively();
    composite.releaseCaptureMouseExclusively();
    EXPECT_EQ(main->takeCalls(),
              (Strings{"lockSystemMouse", "unlockSystemMouse(-1, -1)", "unlockSystemMouse(3, 4)",
                       "setCaptureMouseExclusively", "releaseCaptureMouseExclusively"}));
    EXPECT_EQ(other->takeCalls(), Strings());
}

TEST_F(InputContextCompositeTest, RemovingKeepsTheEntryAndComplainsOnlyOfUnknownIds) {
    test::CapturedLog log(kLogError, "orbelantine::InputContextComposite::");
    composite.removeSecondaryContext("pen");
    EXPECT_EQ(log.told(), Strings{"error unregisterEvents() id=pen does not exist"});
    composite.addSecondaryContext("pen", other);
    composite.removeSecondaryContext("pen");
    composite.removeSecondaryContext("pen");
    EXPECT_EQ(log.told(), Strings());
    EXPECT_EQ(heardOf({other}), 0);
    composite.addSecondaryContext("pen", other);
    EXPECT_EQ(heardOf({other}), 1);
}

TEST_F(InputContextCompositeTest, ASurfaceIsHeardAfterItsReplacementUnlessItWasTheMainOne) {
    composite.setMainInputContext(main);
    composite.setMainInputContext(other);
    EXPECT_EQ(heardOf({main}), 0);
    EXPECT_EQ(heardOf({other}), 1);
    const auto tablet = boost::make_shared<FakeInputContext>();
    composite.addSecondaryContext("pen", main);
    composite.addSecondaryContext("pen", tablet);
    EXPECT_EQ(heardOf({main, tablet}), 2);
    composite.removeSecondaryContext("pen");
    EXPECT_EQ(heardOf({main, tablet}), 0);
}

} // namespace
} // namespace orbelantine
