#include "core/common/ThreadName.h"

#include <pthread.h>

#include <string>

namespace orbelantine {

namespace {

// The kernel refuses a longer name instead of cutting it.
constexpr std::size_t kLongestName = 15;

} // namespace

void setCurrentThreadName(const char* name) {
    pthread_setname_np(pthread_self(), std::string(name).substr(0, kLongestName).c_str());
}

} // namespace orbelantine
