#include "core/common/errors/SystemText.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

TEST(SystemText, SaysWhatTheWindowsNumberMeans) {
    EXPECT_EQ(systemErrorText(0), "Success");
    EXPECT_EQ(systemErrorText(31), "The device is there but does not work");
    EXPECT_EQ(systemErrorText(1225), "The phone refuses the connection");
    // 110 is a timeout of Linux alone.
    EXPECT_EQ(systemErrorText(110), "");
}

} // namespace
} // namespace orbelantine
