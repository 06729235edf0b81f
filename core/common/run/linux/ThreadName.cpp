#include "core/common/run/ThreadName.h"

#include <pthread.h>

#include <fstream>
#include <string>

namespace orbelantine {

namespace {

// The kernel refuses a longer name of the calling thread instead of cutting it.
constexpr std::size_t kLongestName = 15;

} // namespace

void setThreadName(const char* name, int threadId) {
    const std::string text = std::string(name).substr(0, kLongestName);
    if (threadId == kCallingThread)
        pthread_setname_np(pthread_self(), text.c_str());
    else
        std::ofstream("/proc/self/task/" + std::to_string(threadId) + "/comm") << text;
}

} // namespace orbelantine
