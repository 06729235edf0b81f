#include "hid/channel/LocalRadioApi.h"

#include "core/common/errors/ErrorCode.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <string>

namespace orbelantine {
namespace {

using Error = LocalRadioApi::Error;
using Handle = LocalRadioApi::Handle;

constexpr const wchar_t* kKey = L"Software\\OrbelantineTest";
constexpr std::uint32_t kQueryAndSet = KEY_QUERY_VALUE | LocalRadioApi::kKeySetValue;

TEST(WindowsLocalRadioApi, RegistryValueComesBackAsItWasSetAndAMissingKeyIsNotFound) {
    EXPECT_EQ(reinterpret_cast<HKEY>(LocalRadioApi::kLocalMachine), HKEY_LOCAL_MACHINE);
    HKEY made = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, kKey, &made), ERROR_SUCCESS);
    RegCloseKey(made);

    LocalRadioApi& api = LocalRadioApi::system();
    Handle key = 0;
    const auto root = reinterpret_cast<Handle>(HKEY_CURRENT_USER);
    ASSERT_EQ(api.regOpenKeyEx(root, kKey, kQueryAndSet, key), 0u);
    EXPECT_EQ(api.regSetValueEx(key, L"Local Name", LocalRadioApi::kRegBinary, "Desk", 4), 0u);
    DWORD type = 0;
    std::array<char, 16> bytes{};
    DWORD size = sizeof(bytes);
    EXPECT_EQ(RegQueryValueExW(reinterpret_cast<HKEY>(key), L"Local Name", nullptr, &type,
                               reinterpret_cast<BYTE*>(bytes.data()), &size),
              ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_BINARY));
    EXPECT_EQ(std::string(bytes.data(), size), "Desk");
    api.regCloseKey(key);
    RegDeleteKeyW(HKEY_CURRENT_USER, kKey);
    Handle missing = 77;
    EXPECT_EQ(api.regOpenKeyEx(root, kKey, LocalRadioApi::kKeySetValue, missing),
              static_cast<Error>(win32::kErrorFileNotFound));
    EXPECT_EQ(missing, 77);
}

TEST(WindowsLocalRadioApi, ComputerNameIsTheSystemsAndAnUnknownDeviceHasNoId) {
    std::array<wchar_t, 1024> name{};
    std::uint32_t size = 1024;
    ASSERT_EQ(LocalRadioApi::system().getComputerName(name.data(), size), 0u);
    EXPECT_GT(size, 0u);
    EXPECT_EQ(std::wstring(name.data()).size(), size);
    std::uint32_t tooSmall = 0;
    EXPECT_NE(LocalRadioApi::system().getComputerName(name.data(), tooSmall), 0u);
    EXPECT_NE(LocalRadioApi::system().cmGetDeviceId(0xFFFFFFF0, name.data(), 200), 0u);
}

} // namespace
} // namespace orbelantine
