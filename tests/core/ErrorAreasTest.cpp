#include "core/common/errors/ErrorAreas.h"

#include "core/common/errors/ErrorCategory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orbelantine {
namespace {

struct AreaOfTable {
    std::string type;
    int first;
    int afterLast;
    boost::system::error_code (*getErrorCode)(int);
};

const std::vector<AreaOfTable>& areas() {
    static const std::vector<AreaOfTable> table = {
#define ORB_ERROR_AREA(Area, first, ...) {#Area, first, Area::AfterLast, &Area::getErrorCode},
#include "core/common/errors/ErrorAreas.inc"
#undef ORB_ERROR_AREA
    };
    return table;
}

TEST(ErrorAreas, AreFiftySevenWithACategoryEachNamedAfterItsMarker) {
    ASSERT_EQ(areas().size(), 57U);
    for (const AreaOfTable& area : areas())
        EXPECT_EQ(area.getErrorCode(1).category().name(), "struct orbelantine::" + area.type);
}

TEST(ErrorAreas, SuccessAndAfterLastAreTheEndsOfEveryTable) {
    for (const AreaOfTable& area : areas()) {
        const std::string start = "'Category: struct orbelantine::" + area.type + ", Message: ";
        EXPECT_EQ(area.getErrorCode(0).message(), start + "Success'");
        EXPECT_EQ(area.getErrorCode(area.afterLast).message(), start + "Error code - AfterLast'");
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

TEST(ErrorAreas, MessageNamesTheCategoryAndTheCode) {
    EXPECT_EQ(IpcErrors::getErrorCode(IpcErrors::SecurityValidationFailure).message(),
              "'Category: struct orbelantine::IpcErrors, Message: "
              "Error code - SecurityValidationFailure'");
    EXPECT_EQ(IpcErrors::getErrorCode(20800).message(),
              "'Category: struct orbelantine::IpcErrors, Message: "
              "Error code - ConnectionAborted'");
}

TEST(ErrorAreas, ValueOutsideTheRunHasAnEmptyText) {
    const std::string empty = "'Category: struct orbelantine::IpcErrors, Message: '";
    for (const int value : {-2147483647 - 1, -1, 1, 20799, IpcErrors::AfterLast + 1, 2147483647})
        EXPECT_EQ(IpcErrors::getErrorCode(value).message(), empty) << value;
}

} // namespace
} // namespace orbelantine
