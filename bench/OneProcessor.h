#pragma once

#include <sched.h>

#include <algorithm>
#include <cstddef>

namespace orbelantine::bench {

/// As long as it lives, this thread and those that it makes share one processor: where threads wake
/// each other, two processors measure the system's choice of one.
class OneProcessor {
  public:
    OneProcessor() {
        CPU_ZERO(&mFormer);
        ::sched_getaffinity(0, sizeof(mFormer), &mFormer);
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(std::max(0, ::sched_getcpu())), &one);
        ::sched_setaffinity(0, sizeof(one), &one);
    }

    ~OneProcessor() { ::sched_setaffinity(0, sizeof(mFormer), &mFormer); }

    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

  private:
    cpu_set_t mFormer;
};

} // namespace orbelantine::bench
