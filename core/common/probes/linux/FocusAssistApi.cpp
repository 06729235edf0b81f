#include "core/common/probes/FocusAssist.h"

namespace orbelantine {

namespace {

// There is no such service here, so the module that would have it is never loaded.
class LinuxFocusAssistApi final : public FocusAssistApi {
  public:
    [[nodiscard]] Module getModuleHandle(const wchar_t*) override { return nullptr; }

    [[nodiscard]] Procedure getProcAddress(Module, const char*) override { return nullptr; }
};

} // namespace

FocusAssistApi& FocusAssistApi::system() {
    static LinuxFocusAssistApi api;
    return api;
}

} // namespace orbelantine
