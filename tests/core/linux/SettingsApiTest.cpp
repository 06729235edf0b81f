#include "core/common/config/SettingsApi.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace orbelantine {

namespace {

/// A user's configuration folder with a settings file of one content.
class Settings : public testing::Test {
  protected:
    Settings() { setenv("XDG_CONFIG_HOME", mFolder.c_str(), 1); }

    ~Settings() override {
        unsetenv("XDG_CONFIG_HOME");
        std::filesystem::remove_all(mFolder);
    }

    /// The error; 0 with the value in mValue.
    SettingsApi::Error read(const std::string& content) {
        std::filesystem::create_directories(mFolder / "orbelantine");
        std::ofstream(mFolder / "orbelantine" / "settings") << content;
        return SettingsApi::system().getInteger("DragSpeed", mValue);
    }

    std::filesystem::path mFolder = std::filesystem::temp_directory_path() /
                                    ("orbelantine-settings-" + std::to_string(getpid()));
    std::uint32_t mValue = 7;
};

TEST_F(Settings, AnIntegerIsReadAmongOtherLinesAndNothingElseIs) {
    EXPECT_EQ(SettingsApi::system().getInteger("DragSpeed", mValue), 2U);
    EXPECT_EQ(read("DragSpeed 10000\n"), 2U);
    for (const char* content : {"DragSpeed =", "DragSpeed = fast", "DragSpeed = 1.5",
                                "DragSpeed = -1", "DragSpeed = 4294967296"})
        EXPECT_EQ(read(content), 13U) << content;
    EXPECT_EQ(mValue, 7U);
    EXPECT_EQ(read("# mouse\nDragSpeedOfAnother = 1\n\n  DragSpeed=  20000 \nDragSpeed = 3\n"), 0U);
    EXPECT_EQ(mValue, 20000U);
}

} // namespace

} // namespace orbelantine
