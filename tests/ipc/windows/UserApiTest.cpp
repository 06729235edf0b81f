#include "ipc/pipe/CurrentUser.h"
#include "tests/ipc/PipeFolder.h"
#include "tests/ipc/TestPipe.h"

#include <aclapi.h>
#include <gtest/gtest.h>

namespace orbelantine::test {
namespace {

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

TEST(WindowsUserApi, PipeOfTheDescriptorIsTheUsersAlone) {
    UserApi& api = UserApi::system();
    UserApi::Error error = 0;
    const std::wstring user = getCurrentUserSid(api, error);
    EXPECT_TRUE(user.starts_with(L"S-1-5-"));
    void* descriptor = nullptr;
    EXPECT_NE(api.convertStringSecurityDescriptor(L"D:PAI(A;; FA;;;nobody", 1, descriptor), 0u);
    ASSERT_EQ(api.convertStringSecurityDescriptor(L"D:PAI(A;; FA;;;" + user + L")", 1, descriptor),
              0u);
    const Served server(PipeFolder().fullName(), descriptor);
    api.localFree(descriptor);
    ASSERT_EQ(server.error, 0u);
    const PipeSecurity security(server.pipe);
    ASSERT_NE(security.list, nullptr);
    ASSERT_EQ(security.list->AceCount, 1);
    void* entry = nullptr;
    ASSERT_TRUE(GetAce(security.list, 0, &entry));
    auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(entry);
    EXPECT_EQ(allowed->Header.AceType, ACCESS_ALLOWED_ACE_TYPE);
    EXPECT_EQ(allowed->Mask, static_cast<ACCESS_MASK>(FILE_ALL_ACCESS));
    wchar_t* text = nullptr;
    EXPECT_EQ(api.convertSidToStringSid(&allowed->SidStart, text), 0u);
    EXPECT_EQ(text, user);
    api.localFree(text);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    ASSERT_TRUE(GetSecurityDescriptorControl(security.descriptor, &control, &revision));
    EXPECT_TRUE(control & SE_DACL_PROTECTED);
}

} // namespace
} // namespace orbelantine::test
