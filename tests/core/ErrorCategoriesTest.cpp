#include "core/common/errors/ApiCategory.h"
#include "core/common/errors/SwigErrorCategory.h"
#include "core/common/errors/SystemText.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace orbelantine {
namespace {

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

TEST(ApiCategory, IsOneObjectForEachCallWhateverTheThread) {
    std::vector<const boost::system::error_category*> seen(8);
    std::vector<std::thread> threads;
    for (auto& category : seen)
        threads.emplace_back([&category] { category = &apiCategory("Driver:LocalAlloc"); });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto* category : seen)
        EXPECT_EQ(category, &apiCategory("Driver:LocalAlloc"));
    EXPECT_NE(seen[0], &apiCategory("Driver:NotOpen"));
}

TEST(SystemText, IsEmptyForAnUnknownNumber) {
    EXPECT_FALSE(systemErrorText(2).empty());
    EXPECT_EQ(systemErrorText(999999), "");
    EXPECT_EQ(systemErrorText(-1), "");
}

TEST(SwigErrorCategory, MessageIsTheNumberEachTime) {
    EXPECT_STREQ(GlobalCategory.name(), "SwigErrorCategory");
    for (const int number : {-5, -5, 0, 70000})
        EXPECT_EQ(GlobalCategory.message(number), "Swig Error: " + std::to_string(number));
}

TEST(SwigErrorCategory, CodesBelongToTheirOwnObject) {
    const SwigErrorCategory other;
    EXPECT_EQ(other.error_code(3), error_code(3, other));
    EXPECT_NE(other.error_code(3), GlobalCategory.error_code(3));
}

} // namespace
} // namespace orbelantine
