#include "tools/virtual_stack/program/linux/Program.h"

#include "tests/phone/linux/TestHost.h"
#include "tools/virtual_stack/linux/PrivateBus.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <variant>

namespace orbelantine::stack {

namespace {

class StackProgramTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!mBus.runs())
            GTEST_SKIP() << "dbus-daemon is not installed";
    }

    /// The log once this is in it, or as it is when that takes too long.
    [[nodiscard]] std::string logWith(const std::string& wanted) const {
        std::string text;
        const auto latest = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        while (text.find(wanted) == std::string::npos &&
               std::chrono::steady_clock::now() < latest) {
            std::ifstream file(mOptions.log);
            text.assign(std::istreambuf_iterator<char>(file), {});
            std::this_thread::yield();
        }
        return text;
    }

    static std::string failure(const Options& options) {
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(runVirtualStack(options, out, err), 1);
        return err.str();
    }

    PrivateBus mBus;
    phone::TemporaryFolder mFolder;
    Options mOptions{.bus = mBus.address(),
                     .devices = {{.address = "00:11:22:33:44:55", .name = "My phone"}},
                     .log = mFolder / "log",
                     .readyFile = mFolder / "ready",
                     .control = mFolder / "control"};
};

} // namespace

TEST_F(StackProgramTest, ControlChangesTheSurroundingsAndASignalLeavesTheLogAlone) {
    phone::ChildProcess program([this] {
        std::ofstream out("/dev/stdout");
        std::ostringstream err;
        return runVirtualStack(mOptions, out, err);
    });
    ASSERT_EQ(program.printed(), "virtual stack is on " + mOptions.bus + "\n");
    std::ofstream(mOptions.control) << "ask My phone\nradio off\nradio dim\nremove My phone\n"
                                       "add 00:00:00:00:00:01\nask My phone\n";
    const std::string log = logWith("'ask My phone'");
    for (const char* line : {R"("event":"refused","subject":"00:11:22:33:44:55")",
                             R"("event":"power","subject":"hci0","detail":"off")",
                             "radio wants on or off, not 'radio dim'", "add wants ADDRESS=NAME",
                             "ask wants the name of a device that is there"})
        EXPECT_NE(log.find(line), std::string::npos) << line << " in " << log;
    EXPECT_EQ(failure({.bus = mOptions.bus}), "virtual_stack: there is an org.bluez on the bus " +
                                                  mOptions.bus +
                                                  " already: choose another with --bus\n");
    EXPECT_EQ(program.end(SIGTERM), 0);
    EXPECT_FALSE(std::filesystem::exists(mOptions.readyFile));
    EXPECT_FALSE(std::filesystem::exists(mOptions.control));
}

TEST_F(StackProgramTest, WhatIsMissingIsNamedWithARemedy) {
    EXPECT_NE(failure({.bus = "unix:path=/nowhere"}).find("choose another with --bus"),
              std::string::npos);
    mOptions.log = mFolder / "missing/log";
    EXPECT_EQ(failure(mOptions).substr(0, 28), "virtual_stack: cannot write ");
}

TEST(StackOptions, DeviceHasAnAddressANameAndPerhapsAClass) {
    for (const auto& [text, deviceClass] : {std::pair{"00:11:22:aa:BB:cc=A b", 0x5A020CU},
                                            {"00:11:22:aa:BB:cc=A b=headset", 0x240404U},
                                            {"00:11:22:aa:BB:cc=A b=0x1F00", 0x1F00U}}) {
        const char* const arguments[] = {"--device", text};
        const auto options = std::get<Options>(parseOptions(arguments));
        EXPECT_EQ(options.devices.at(0).address, "00:11:22:AA:BB:CC");
        EXPECT_EQ(options.devices.at(0).name, "A b");
        EXPECT_EQ(options.devices.at(0).deviceClass, deviceClass);
    }
    for (const char* text : {"", "00:11:22:aa:BB:cc", "00:11:22:aa:BB:cc=", "00:11:22=A",
                             "00:11:22:aa:BB:cc=A=", "00:11:22:aa:BB:cc=A=fridge",
                             "00:11:22:aa:BB:cc=A=0x1000000", "00:11:22:aa:BB:cc=A=0x"}) {
        const char* const arguments[] = {"--device", text};
        EXPECT_TRUE(std::holds_alternative<phone::UsageError>(parseOptions(arguments))) << text;
    }
}

} // namespace orbelantine::stack
