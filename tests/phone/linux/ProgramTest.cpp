#include "tools/virtual_phone/program/linux/Program.h"

#include "tests/phone/linux/TestHost.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>

namespace orbelantine::phone {

namespace {

std::string contentOf(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A phone in a process of its own, as the program is.
class ProgramTest : public testing::Test {
  protected:
    ProgramTest() {
        mOptions.devices = mFolder / "devices";
        mOptions.log = mFolder / "log";
        mOptions.picture = mFolder / "picture.svg";
        mOptions.readyFile = mFolder / "ready";
    }

    void start() {
        mPhone.emplace([this] {
            std::ofstream out("/dev/stdout");
            std::ostringstream err;
            return runVirtualPhone(mOptions, out, err);
        });
        ASSERT_TRUE(mPhone->runs());
    }

    /// The path in the ready file.
    [[nodiscard]] std::string socketPath() const {
        const std::string line = contentOf(mOptions.readyFile);
        return line.substr(0, line.find('\n'));
    }

    void typeA() const {
        const TestHost interrupt(socketPath());
        interrupt.send(packet::kConnectInterrupt);
        EXPECT_EQ(interrupt.wait(), packet::kSuccess);
        interrupt.send(packet::kTypeA);
        interrupt.send(packet::kGetVersion);
        EXPECT_EQ(interrupt.wait(), packet::kVersion4);
    }

    /// What it says when it can't start.
    static std::string failure(const Options& options) {
        std::ostringstream out;
        std::ostringstream err;
        EXPECT_EQ(runVirtualPhone(options, out, err), 1);
        return err.str();
    }

    TemporaryFolder mFolder;
    Options mOptions;
    std::optional<ChildProcess> mPhone;
};

} // namespace

TEST_F(ProgramTest, KeepsItsLogCompleteAndASignalEndsItWithPictureAndSummaryAndNoSocketLeft) {
    for (const int signal : {SIGTERM, SIGINT}) {
        start();
        EXPECT_EQ(mPhone->printed(),
                  "virtual phone 00:11:22:33:44:55 is listening in " + mOptions.devices + "\n");
        const std::string socket = socketPath();
        typeA();
        const std::string log = contentOf(mOptions.log);
        EXPECT_NE(log.find(R"("typed":"a")"), std::string::npos);
        EXPECT_EQ(log.back(), '\n');
        EXPECT_EQ(mPhone->end(signal), 0);
        EXPECT_FALSE(std::filesystem::exists(socket));
        EXPECT_FALSE(std::filesystem::exists(mOptions.readyFile));
        EXPECT_NE(contentOf(mOptions.log).find(R"("event":"summary","text":"a")", log.size()),
                  std::string::npos);
        EXPECT_NE(contentOf(mOptions.picture).find("a<tspan"), std::string::npos);
    }
}

TEST_F(ProgramTest, SecondPhoneFailsAndLeavesTheFirstOnesFiles) {
    start();
    typeA();
    const std::string before = contentOf(mOptions.log);
    EXPECT_EQ(failure(mOptions), "virtual_phone: another phone is listening at " + socketPath() +
                                     ": stop it, or choose another --address or --devices\n");
    EXPECT_EQ(contentOf(mOptions.log).substr(0, before.size()), before);
}

TEST_F(ProgramTest, FileThatCannotBeWrittenIsNamedAtTheStart) {
    for (std::string Options::*file : {&Options::log, &Options::picture, &Options::readyFile}) {
        Options options = mOptions;
        options.*file = mFolder / "missing/file";
        EXPECT_EQ(failure(options).substr(0, 28), "virtual_phone: cannot write ");
    }
}

} // namespace orbelantine::phone
