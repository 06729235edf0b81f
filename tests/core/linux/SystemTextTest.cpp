#include "core/common/errors/SystemText.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

TEST(SystemText, IsTheCLibrarys) {
    EXPECT_EQ(systemErrorText(0), "Success");
    EXPECT_EQ(systemErrorText(2), "No such file or directory");
}

} // namespace
} // namespace orbelantine
