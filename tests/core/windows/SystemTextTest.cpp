#include "core/common/errors/SystemText.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

TEST(SystemText, KeepsItsLineEnd) {
    EXPECT_TRUE(systemErrorText(2).ends_with("\r\n"));
}

} // namespace
} // namespace orbelantine
