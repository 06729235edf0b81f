#include "bluetooth/linux/DeviceFolder.h"

#include "bluetooth/DriverProtocol.h"
#include "bluetooth/linux/LinuxErrors.h"
#include "core/common/errors/ErrorCode.h"
#include "tests/bluetooth/linux/ScriptedDevice.h"

#include <unistd.h>

#include <fstream>

namespace orbelantine::test {
namespace {

namespace fs = std::filesystem;

const Guid& kClass = driver::kHandsfreeInterface;

using Paths = std::vector<std::wstring>;

class DeviceFolder : public DeviceFolderFixture {
  protected:
    [[nodiscard]] Paths list(bool presentOnly) const {
        Paths paths;
        EXPECT_EQ(listDevices(kClass, presentOnly, paths), 0u);
        return paths;
    }
};

TEST_F(DeviceFolder, EnvironmentNamesTheFolder) {
    EXPECT_EQ(deviceFolder(), mFolder);
    unsetenv("ORBELANTINE_DEVICE_DIR");
    setenv("XDG_RUNTIME_DIR", "/run/user/7", 1);
    EXPECT_EQ(deviceFolder(), "/run/user/7/orbelantine/devices");
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(deviceFolder(), "/tmp/orbelantine-" + std::to_string(getuid()) + "/devices");
}

TEST_F(DeviceFolder, ClassFolderIsTheGuidInLowerCaseWithoutBraces) {
    EXPECT_EQ(classFolderName(kClass), "a1d3ed72-cebf-4c80-bcb8-c39236a2bf9a");
    EXPECT_EQ(classFolderName(driver::kHidInterfaces[0]), "4df52311-7aa8-4d3c-b58b-3749826e10a6");
    EXPECT_EQ(classFolderName(driver::kHidInterfaces[1]), "38b034e0-b760-4587-948f-14691d541e2b");
}

TEST_F(DeviceFolder, SocketsArePresentAndPlainFilesOnlyInstalled) {
    EXPECT_EQ(list(false), Paths()) << "there is no folder of the class";
    // Shown whatever the locale; tests run in the "C" one.
    const fs::path socket = devicePath(kClass, "b \xC3\xA9\xF0\x9F\x93\xB1");
    const std::wstring shown = devicePath(kClass, "b ").wstring() + L"\u00E9\U0001F4F1";
    const ScriptedDevice device(socket, [](auto&&...) { return true; });
    const fs::path file = devicePath(kClass, "a");
    std::ofstream(file).close();
    fs::create_directory(devicePath(kClass, "folder"));
    // Not a text in UTF-8.
    std::ofstream(devicePath(kClass, "\xFF")).close();
    EXPECT_EQ(list(true), Paths{shown});
    EXPECT_EQ(list(false), (Paths{file.wstring(), shown}));
    EXPECT_EQ(deviceFile(shown), socket);
}

TEST_F(DeviceFolder, FileInPlaceOfTheClassFolderIsAnError) {
    std::ofstream(mFolder / classFolderName(kClass)).close();
    Paths paths;
    EXPECT_EQ(listDevices(kClass, true, paths), win32::kErrorGenFailure);
}

} // namespace
} // namespace orbelantine::test
