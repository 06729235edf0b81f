#include "core/common/probes/FocusAssist.h"

#include <windows.h>

namespace orbelantine {

namespace {

class WindowsFocusAssistApi final : public FocusAssistApi {
  public:
    [[nodiscard]] Module getModuleHandle(const wchar_t* name) override {
        return GetModuleHandleW(name);
    }

    [[nodiscard]] Procedure getProcAddress(Module module, const char* name) override {
        return reinterpret_cast<Procedure>(GetProcAddress(static_cast<HMODULE>(module), name));
    }
};

} // namespace

FocusAssistApi& FocusAssistApi::system() {
    static WindowsFocusAssistApi api;
    return api;
}

} // namespace orbelantine
