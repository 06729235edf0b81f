#pragma once

#include "core/common/log/Log.h"
#include "core/common/log/LogPaths.h"
#include "core/common/log/Spdlog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace orbelantine {

/// Each case runs in a process of its own, so that it has the service from its first message on,
/// and in a folder of its own.
class LogTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        mFolder = std::filesystem::current_path() / "log_files" / test->name();
        std::filesystem::remove_all(mFolder);
        set_log_folder(toWide(mFolder).c_str());
    }

    [[nodiscard]] std::filesystem::path file() const { return mFolder / "lumiport.log_tests.log"; }

    /// The file's bytes, with all that was logged so far.
    [[nodiscard]] std::string text() const {
        spdlog::apply_all([](const auto& logger) { logger->flush(); });
        return onDisk();
    }

    [[nodiscard]] std::string onDisk() const {
        std::ifstream stream(file(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    /// Of each line after "STARTING INSTANCE" what follows the thread: "<logger> | <level>]:
    /// <text>".
    [[nodiscard]] std::vector<std::string> laterLines() const {
        std::vector<std::string> result;
        std::istringstream stream(text());
        std::string line;
        std::getline(stream, line);
        while (std::getline(stream, line)) {
            line.pop_back(); // The carriage return.
            result.push_back(line.substr(line.find(" | ", line.find("| tid:")) + 3));
        }
        return result;
    }

    std::filesystem::path mFolder;
};

/// Writes from the level info on.
class LogAtInfo : public LogTest {
  protected:
    void SetUp() override {
        LogTest::SetUp();
        set_log_level(kLogInfo);
    }
};

using Lines = std::vector<std::string>;

} // namespace orbelantine
