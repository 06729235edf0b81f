#include "core/common/ApiCategory.h"
#include "core/common/SwigErrorCategory.h"
#include "core/common/SystemText.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace orbelantine {
namespace {

TEST(ApiCategory, IsTheSameObjectForTheSameCall) {
    EXPECT_EQ(&apiCategory("Driver:CreateFile"), &apiCategory("Driver:CreateFile"));
    EXPECT_NE(error_code(2, apiCategory("Driver:CreateFile")),
              error_code(2, apiCategory("Driver:NotOpen")));
}

TEST(ApiCategory, MessageNamesTheCallAndHasTheSystemsText) {
    const error_code error(2, apiCategory("Driver:CreateFile"));
    EXPECT_STREQ(error.category().name(), "Driver:CreateFile");
    EXPECT_EQ(error.message(),
              "'Category: Driver:CreateFile, Message: " + systemErrorText(2) + "'");
}

TEST(ApiCategory, PlainSystemCategoryIsNamedAfterItsMarker) {
    const error_code error(999999, ErrorCategory<Win32Api>::instance());
    EXPECT_STREQ(error.category().name(), "class Win32Api");
    EXPECT_EQ(error.message(), "'Category: class Win32Api, Message: '");
}

TEST(ApiCategory, ThreadsGetTheSameObject) {
    std::vector<const boost::system::error_category*> seen(8);
    std::vector<std::thread> threads;
    for (auto& category : seen)
        threads.emplace_back([&category] { category = &apiCategory("Driver:LocalAlloc"); });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto* category : seen)
        EXPECT_EQ(category, &apiCategory("Driver:LocalAlloc"));
}

TEST(SystemText, IsEmptyForAnUnknownNumber) {
    EXPECT_FALSE(systemErrorText(2).empty());
    EXPECT_EQ(systemErrorText(999999), "");
    EXPECT_EQ(systemErrorText(-1), "");
}

TEST(SwigErrorCategory, MessageIsTheNumberEachTime) {
    EXPECT_STREQ(GlobalCategory.name(), "SwigErrorCategory");
    EXPECT_EQ(GlobalCategory.message(-5), "Swig Error: -5");
    EXPECT_EQ(GlobalCategory.message(-5), "Swig Error: -5");
    EXPECT_EQ(GlobalCategory.message(0), "Swig Error: 0");
    EXPECT_EQ(GlobalCategory.message(70000), "Swig Error: 70000");
}

TEST(SwigErrorCategory, CodesBelongToTheirOwnObject) {
    const SwigErrorCategory other;
    EXPECT_EQ(&other.error_code(3).category(), &other);
    EXPECT_EQ(other.error_code(3).value(), 3);
    EXPECT_NE(other.error_code(3), GlobalCategory.error_code(3));
}

} // namespace
} // namespace orbelantine
