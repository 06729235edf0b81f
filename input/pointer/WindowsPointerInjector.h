#pragma once

#include "input/pointer/IPointerInjector.h"
#include "input/pointer/PointerApi.h"

namespace orbelantine {

/// The injector over the system's call for it: SendInput, on Linux XTest.
class WindowsPointerInjector final : public IPointerInjector {
  public:
    explicit WindowsPointerInjector(PointerApi& api = PointerApi::system());
    ~WindowsPointerInjector() override;

    void injectMouseInput(std::int16_t dx, std::int16_t dy) override;
    void injectMouseInput(LeftDown) override;
    void injectMouseInput(LeftUp) override;
    void injectMouseInput(RightDown) override;
    void injectMouseInput(RightUp) override;

  private:
    void send(const char* function, std::uint32_t flags, std::int32_t dx = 0, std::int32_t dy = 0);

    PointerApi& mApi;
};

} // namespace orbelantine
