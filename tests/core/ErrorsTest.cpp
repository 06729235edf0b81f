#include "core/common/errors/ApiCategory.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/SwigErrorCategory.h"
#include "core/common/errors/SystemText.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace orbelantine {
namespace {

std::string shown(const std::string& category, const std::string& text) {
    return "'Category: " + category + ", Message: " + text + "'";
}

TEST(ErrorAreas, AreFiftySevenNamedAfterTheirMarkersAndBeginWithSuccessAndEndWithAfterLast) {
    const struct {
        std::string type;
        int afterLast;
        error_code (*getErrorCode)(int);
    } areas[] = {

#define ORB_ERROR_AREA(Area, ...) {#Area, Area::AfterLast, &Area::getErrorCode},
#include "core/common/errors/ErrorAreas.inc"
#undef ORB_ERROR_AREA
    };
    ASSERT_EQ(std::size(areas), 57U);
    for (const auto& [type, afterLast, getErrorCode] : areas) {
        const std::string name = "struct orbelantine::" + type;
        EXPECT_EQ(getErrorCode(1).category().name(), name);
        EXPECT_EQ(getErrorCode(0).message(), shown(name, "Success"));
        EXPECT_EQ(getErrorCode(afterLast).message(), shown(name, "Error code - AfterLast"));
    }
}

TEST(ErrorAreas, NumbersAreThoseThatHostsKnow) {
    EXPECT_EQ(kErrorBase, 20000);
    EXPECT_EQ(ServiceErrors::AlreadyConnected, 20001);
    EXPECT_EQ(static_cast<int>(ServiceErrors::AfterLast), 20010);
    EXPECT_EQ(static_cast<int>(SmsErrors::InvalidParameter), 20010);
    EXPECT_EQ(IosErrors::DeprecatedDontUseThisErrorSendFailed, 20023);
    EXPECT_EQ(DriverErrors::Max, 20160);
    EXPECT_EQ(DriverErrors::AfterLast, 20161);
    EXPECT_EQ(WifiDirectErrors::MiracastConflict, 20422);
    EXPECT_EQ(P2pLinkErrors::P2pRmiDisocnnected, 20505);
    EXPECT_EQ(P2pLinkErrors::AfterLast, 20520);
    EXPECT_EQ(WifiUtilErrors::Dummy, 20603);
    EXPECT_EQ(HidErrors::SdpHidRegistrationFailure, 21127);
    EXPECT_EQ(MediaServiceErrors::TransferOperationAlreadyInProgress, 22017);
    EXPECT_EQ(ProtocolErrors::NO_REMOTE_SERVICE, 22087);
    EXPECT_EQ(SettingsErrors::AfterLast, 22153);
    EXPECT_EQ(OrbelantineErrorsEnd::Last, 25000);
}

TEST(ErrorAreas, MessageNamesTheCodeAndIsEmptyOutsideTheRun) {
    const std::string category = "struct orbelantine::IpcErrors";
    EXPECT_EQ(IpcErrors::getErrorCode(IpcErrors::SecurityValidationFailure).message(),
              shown(category, "Error code - SecurityValidationFailure"));
    EXPECT_EQ(IpcErrors::getErrorCode(20800).message(),
              shown(category, "Error code - ConnectionAborted"));
    for (const int value : {-2147483647 - 1, -1, 1, 20799, IpcErrors::AfterLast + 1, 2147483647})
        EXPECT_EQ(IpcErrors::getErrorCode(value).message(), shown(category, "")) << value;
}

TEST(ApiCategory, MessageNamesTheCallAndHasTheSystemsTextAndEachCallHasOneObjectForAllThreads) {
    const error_code error(2, apiCategory("Driver:CreateFile"));
    EXPECT_STREQ(error.category().name(), "Driver:CreateFile");
    EXPECT_EQ(error.message(), shown("Driver:CreateFile", systemErrorText(2)));
    EXPECT_FALSE(systemErrorText(2).empty());
    const error_code unknown(999999, ErrorCategory<Win32Api>::instance());
    EXPECT_EQ(unknown.message(), shown("class Win32Api", ""));
    EXPECT_EQ(systemErrorText(-1), "");
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

TEST(SwigErrorCategory, MessageIsTheNumberAndCodesBelongToTheirOwnObject) {
    EXPECT_STREQ(GlobalCategory.name(), "SwigErrorCategory");
    for (const int number : {-5, -5, 0, 70000})
        EXPECT_EQ(GlobalCategory.message(number), "Swig Error: " + std::to_string(number));
    const SwigErrorCategory other;
    EXPECT_EQ(other.error_code(3), error_code(3, other));
    EXPECT_NE(other.error_code(3), GlobalCategory.error_code(3));
}

} // namespace
} // namespace orbelantine
