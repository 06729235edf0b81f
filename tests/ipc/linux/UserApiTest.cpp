#include "ipc/pipe/UserApi.h"

#include "core/common/errors/ErrorCode.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>
#include <vector>

namespace orbelantine::test {

TEST(LinuxUserApiTest, TokensUserIsTheEffectiveOne) {
    UserApi& api = UserApi::system();
    UserApi::Handle token = 0;
    ASSERT_EQ(api.openProcessToken(8, token), 0U);
    std::uint32_t size = 0;
    EXPECT_EQ(api.getTokenUser(token, nullptr, 0, size), win32::kErrorInsufficientBuffer);
    std::vector<std::byte> buffer(size + 1);
    // Wherever it lies.
    EXPECT_EQ(api.getTokenUser(token, buffer.data() + 1, size, size), 0U);
    const void* sid = nullptr;
    std::memcpy(&sid, buffer.data() + 1, sizeof(sid));
    EXPECT_GE(sid, buffer.data());
    EXPECT_LT(sid, buffer.data() + buffer.size());
    EXPECT_TRUE(api.isValidSid(sid));
    wchar_t* text = nullptr;
    EXPECT_EQ(api.convertSidToStringSid(sid, text), 0U);
    EXPECT_EQ(text, L"S-1-22-1-" + std::to_wstring(::geteuid()));
    api.localFree(text);
    buffer.assign(buffer.size(), std::byte{0});
    EXPECT_FALSE(api.isValidSid(sid));
    EXPECT_EQ(api.convertSidToStringSid(sid, text), win32::kErrorInvalidSid);
    api.closeHandle(token);
}

TEST(LinuxUserApiTest, OnlyTheEffectiveUserCanBeGivenAccess) {
    UserApi& api = UserApi::system();
    void* descriptor = nullptr;
    const std::wstring user = L"S-1-22-1-" + std::to_wstring(::geteuid());
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
