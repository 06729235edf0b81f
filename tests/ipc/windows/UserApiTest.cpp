#include "ipc/pipe/UserApi.h"

#include "tests/ipc/PipeFolder.h"
#include "tests/ipc/TestPipe.h"

#include <aclapi.h>
#include <gtest/gtest.h>

#include <vector>

namespace orbelantine::test {
namespace {

class WindowsUserApi : public testing::Test {
  protected:
    static constexpr std::uint32_t kTokenQuery = 8;

    WindowsUserApi() {
        PipeHandle token = 0;
        EXPECT_EQ(mApi.openProcessToken(kTokenQuery, token), 0u);
        std::uint32_t needed = 0;
        EXPECT_EQ(mApi.getTokenUser(token, nullptr, 0, needed), win32::kErrorInsufficientBuffer);
        mUser.resize(needed);
        EXPECT_EQ(mApi.getTokenUser(token, mUser.data(), needed, needed), 0u);
        mApi.closeHandle(token);
    }

    void* sid() { return reinterpret_cast<TOKEN_USER*>(mUser.data())->User.Sid; }

    std::wstring sidText() {
        wchar_t* text = nullptr;
        EXPECT_EQ(mApi.convertSidToStringSid(sid(), text), 0u);
        const std::wstring copy = text;
        mApi.localFree(text);
        return copy;
    }

    UserApi& mApi = UserApi::system();
    std::vector<char> mUser;
};

/// What GetSecurityInfo reads back of a pipe.
struct PipeSecurity {
    explicit PipeSecurity(PipeHandle pipe) {
        EXPECT_EQ(GetSecurityInfo(reinterpret_cast<HANDLE>(pipe), SE_KERNEL_OBJECT,
                                  DACL_SECURITY_INFORMATION, nullptr, nullptr, &list, nullptr,
                                  &descriptor),
                  0u);
    }

    ~PipeSecurity() { LocalFree(descriptor); }

    PipeSecurity(const PipeSecurity&) = delete;
    PipeSecurity& operator=(const PipeSecurity&) = delete;

    PACL list = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
};

TEST_F(WindowsUserApi, UserIsNamedByAValidSid) {
    EXPECT_TRUE(mApi.isValidSid(sid()));
    EXPECT_TRUE(sidText().starts_with(L"S-1-5-"));
    const std::vector<char> noSid(64, 0);
    EXPECT_FALSE(mApi.isValidSid(noSid.data()));
    wchar_t* text = nullptr;
    EXPECT_NE(mApi.convertSidToStringSid(noSid.data(), text), 0u);
    std::uint32_t needed = 0;
    EXPECT_EQ(mApi.getTokenUser(0, nullptr, 0, needed), win32::kErrorInvalidHandle);
    EXPECT_EQ(mApi.lastError(), win32::kErrorInvalidHandle);
}

TEST_F(WindowsUserApi, PipeOfTheDescriptorIsTheUsersAlone) {
    void* descriptor = nullptr;
    ASSERT_EQ(
        mApi.convertStringSecurityDescriptor(L"D:PAI(A;; FA;;;" + sidText() + L")", 1, descriptor),
        0u);
    const Served server(PipeFolder().fullName(), descriptor);
    mApi.localFree(descriptor);
    ASSERT_EQ(server.error, 0u);
    const PipeSecurity security(server.pipe);
    ASSERT_NE(security.list, nullptr);
    ASSERT_EQ(security.list->AceCount, 1);
    void* entry = nullptr;
    ASSERT_TRUE(GetAce(security.list, 0, &entry));
    auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
    EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_EQ(allowed->Mask, static_cast<ACCESS_MASK>(FILE_ALL_ACCESS));
    EXPECT_TRUE(EqualSid(&allowed->SidStart, sid()));
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    ASSERT_TRUE(GetSecurityDescriptorControl(security.descriptor, &control, &revision));
    EXPECT_TRUE(control & SE_DACL_PROTECTED);
}

TEST_F(WindowsUserApi, TextThatIsNoDescriptorIsRefused) {
    void* descriptor = nullptr;
    EXPECT_NE(mApi.convertStringSecurityDescriptor(L"D:PAI(A;; FA;;;nobody", 1, descriptor), 0u);
}

} // namespace
} // namespace orbelantine::test
