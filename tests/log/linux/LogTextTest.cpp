#include "../LogTest.h"

namespace orbelantine {
namespace {

using LogText = LogAtInfo;

TEST_F(LogText, WideTextThatCannotBeConvertedEndsTheLine) {
    lumiport_log_fmt(kLogInfo, "T", "before %ls after", L"\u65e5");
    EXPECT_EQ(laterLines(), Lines{"T | info]: before "});
}

} // namespace
} // namespace orbelantine
