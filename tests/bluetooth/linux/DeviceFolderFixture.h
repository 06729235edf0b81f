#pragma once

#include "bluetooth/DriverApi.h"
#include "bluetooth/linux/DeviceFolder.h"
#include "tests/bluetooth/linux/ScriptedDevice.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace orbelantine::test {

/// A device folder of its own, found through the environment.
class DeviceFolderFixture : public testing::Test {
  protected:
    DeviceFolderFixture() {
        char name[] = "/tmp/orbelantine-test-XXXXXX";
        mFolder = mkdtemp(name);
        setenv("ORBELANTINE_DEVICE_DIR", mFolder.c_str(), 1);
    }

    ~DeviceFolderFixture() override {
        unsetenv("ORBELANTINE_DEVICE_DIR");
        std::filesystem::remove_all(mFolder);
    }

    [[nodiscard]] std::filesystem::path devicePath(const Guid& interfaceClass,
                                                   const std::string& name = "x}_LOCALMFG") const {
        return mFolder / classFolderName(interfaceClass) / name;
    }

    std::filesystem::path mFolder;
};

} // namespace orbelantine::test
