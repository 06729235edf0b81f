#include "core/common/run/ThreadName.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <future>
#include <string>
#include <thread>

namespace orbelantine {
namespace {

std::string shownName(int threadId) {
    std::string name;
    std::getline(std::ifstream("/proc/self/task/" + std::to_string(threadId) + "/comm"), name);
    return name;
}

TEST(ThreadName, BothFormsAreShownCutToFifteenCharacters) {
    std::promise<int> id;
    std::promise<void> done;
    std::thread worker([&] {
        setThreadName("BluetoothStateMachineThread");
        id.set_value(gettid());
        done.get_future().wait();
    });
    const int worksAs = id.get_future().get();
    EXPECT_EQ(shownName(worksAs), "BluetoothStateM");
    setThreadName("HidInputClientIoThread", worksAs);
    EXPECT_EQ(shownName(worksAs), "HidInputClientI");
    done.set_value();
    worker.join();
}

} // namespace
} // namespace orbelantine
