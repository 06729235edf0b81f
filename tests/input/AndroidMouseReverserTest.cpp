#include "input/sources/AndroidMouseReverser.h"

#include "core/common/OSAL.h"
#include "tests/input/Traces.h"
#include "tests/support/CapturedLog.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <utility>

namespace orbelantine {

namespace {

using test::CapturedLog;
using test::HandClock;
using test::Texts;

using Delta = std::pair<std::int32_t, std::int32_t>;

/// A reverser made when the clock showed 7 seconds.
class Model {
  public:
    Model() {
        mClock.advance(std::chrono::seconds(7));
        mReverser = std::make_unique<AndroidMouseReverser>(mClock);
    }

    /// Nanoseconds since the making.
    void advanceTo(std::int64_t ns) {
        mClock.advance(std::chrono::seconds(7) + std::chrono::nanoseconds(ns) -
                       mClock.now().time_since_epoch());
    }

    Delta reverse(Delta wanted) {
        mReverser->reverse(wanted.first, wanted.second);
        return wanted;
    }

    Delta apply(Delta sent) {
        mReverser->applyMove(sent.first, sent.second, mClock.now().time_since_epoch().count());
        return sent;
    }

  private:
    HandClock mClock;
    std::unique_ptr<AndroidMouseReverser> mReverser;
};

const std::string kGivenUp = "trace orbelantine::AndroidMouseReverser::reverse: maximum number of "
                             "iteratiuon reached (50)";

TEST(AndroidMouseReverser, ReversesAndAppliesAsTheTracesSay) {
    const auto rows = test::readTrace("reverser.csv");
    const auto at = [&](std::size_t row, std::size_t column) {
        return static_cast<std::int32_t>(std::stol(rows[row][column]));
    };
    std::unique_ptr<Model> model;
    for (std::size_t row = 1; row < rows.size(); ++row) {
        SCOPED_TRACE(rows[row][0] + " at " + rows[row][1]);
        if (rows[row][0] != rows[row - 1][0])
            model = std::make_unique<Model>();
        CapturedLog log(kLogTrace);
        model->advanceTo(std::stoll(rows[row][1]));
        const Delta wanted{at(row, 2), at(row, 3)};
        const Delta sent{at(row, 4), at(row, 5)};
        EXPECT_EQ(model->reverse(wanted), sent);
        EXPECT_EQ(log.told(), rows[row][8] == "50" ? Texts{kGivenUp} : Texts());
        // The search leaves the model as it was.
        EXPECT_EQ(model->reverse(wanted), sent);
        EXPECT_EQ(model->apply(sent), (Delta{at(row, 6), at(row, 7)}));
    }
}

TEST(AndroidMouseReverser, WidestDeltasStayWithinTheirType) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    Model model;
    EXPECT_EQ(model.apply({kMost, kLeast}), (Delta{kMost, kLeast}));
    model.advanceTo(1000000);
    // A third, as far as a float tells.
    EXPECT_NEAR(model.reverse({kLeast, kMost}).second, kMost / 3, 64);
    EXPECT_EQ(model.apply({kMost, kLeast}), (Delta{kMost, kLeast}));
}

TEST(MouseReverser, HintChoosesTheImplementationAndTheNullObjectLeavesEveryDelta) {
    const auto create = [](const char* hint) {
        return osalCreate<IMouseReverser, IClock&>(OSALFactory::instance(), "IMouseReverser",
                                                   KVStore(), hint, IClock::system());
    };
    EXPECT_NE(dynamic_cast<AndroidMouseReverser*>(create("android").get()), nullptr);
    for (const char* hint : {"ios", ""}) {
        Delta delta{300, -5};
        create(hint)->reverse(delta.first, delta.second);
        create(hint)->applyMove(delta.first, delta.second, 0);
        EXPECT_EQ(delta, (Delta{300, -5})) << hint;
    }
}

} // namespace

} // namespace orbelantine
