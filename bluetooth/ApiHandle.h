#pragma once

#include <cstdint>

namespace orbelantine {

/// Owns one handle that an `Api` gave out, and gives it back with `Release`.
template <class Api, void (Api::*Release)(std::intptr_t)>
class ApiHandle {
  public:
    static constexpr std::intptr_t kNone = -1;

    explicit ApiHandle(Api& api)
        : mApi(api) {}

    ~ApiHandle() {
        if (mHandle != kNone)
            (mApi.*Release)(mHandle);
    }

    ApiHandle(const ApiHandle&) = delete;
    ApiHandle& operator=(const ApiHandle&) = delete;

    [[nodiscard]] std::intptr_t get() const { return mHandle; }

    /// Where the call that makes the handle stores it; it leaves it alone on failure.
    [[nodiscard]] std::intptr_t& out() { return mHandle; }

  private:
    Api& mApi;
    std::intptr_t mHandle = kNone;
};

} // namespace orbelantine
