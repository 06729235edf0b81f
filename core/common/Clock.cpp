#include "core/common/Clock.h"

#include <thread>

namespace orbelantine {

namespace {

class SystemClock final : public IClock {
  public:
    [[nodiscard]] TimePoint now() const override { return std::chrono::steady_clock::now(); }

    void sleepFor(Duration pause) override { std::this_thread::sleep_for(pause); }
};

} // namespace

IClock& IClock::system() {
    static SystemClock clock;
    return clock;
}

} // namespace orbelantine
