#include "../LogTest.h"

namespace orbelantine {
namespace {

using LogText = LogTest;

TEST_F(LogText, WideTextThatCannotBeConvertedEndsTheLine) {
    set_log_level(kLogInfo);
    lumiport_log_fmt(kLogInfo, "T", "before %ls after", L"\u65e5");
    EXPECT_EQ(laterLines(), Lines{"T | info]: before "});
}

} // namespace
} // namespace orbelantine
