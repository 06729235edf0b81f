#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/CurrentUser.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace orbelantine::test {

TEST(LinuxUserApiTest, OnlyTheEffectiveUserCanBeGivenAccess) {
    UserApi& api = UserApi::system();
    UserApi::Error error = 0;
    const std::wstring user = getCurrentUserSid(api, error);
    EXPECT_EQ(user, L"S-1-22-1-" + std::to_wstring(::geteuid()));
    void* descriptor = nullptr;
    EXPECT_EQ(api.convertStringSecurityDescriptor(L"D:PAI(A;; FA;;;" + user + L")", 1, descriptor),
              0U);
    EXPECT_NE(descriptor, nullptr);
    api.localFree(descriptor);
    for (const std::wstring& text :
         {L"D:PAI(A;; FA;;;" + user + L"0)", L"D:PAI(A;;FA;;;WD)" + user, std::wstring()})
        EXPECT_EQ(api.convertStringSecurityDescriptor(text, 1, descriptor),
                  win32::kErrorInvalidSid);
    EXPECT_EQ(api.lastError(), win32::kErrorInvalidSid);
}

} // namespace orbelantine::test
