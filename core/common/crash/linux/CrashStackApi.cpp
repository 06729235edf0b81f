#include "core/common/crash/CrashStackApi.h"

#include "core/common/crash/linux/CrashFrames.h"
#include "core/common/crash/linux/LoadedModule.h"

#include <boost/core/demangle.hpp>
#include <boost/nowide/convert.hpp>
#include <dlfcn.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace orbelantine {

namespace {

std::filesystem::path programPath() {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

class LinuxCrashStackApi final : public CrashStackApi {
  public:
    void begin() override {}

    void end() override {}

    [[nodiscard]] std::optional<Module> moduleOf(Address address) override {
        const LoadedModule module = loadedModuleAt(address);
        if (!module)
            return std::nullopt;
        const std::filesystem::path path = *module.path != '\0' ? module.path : programPath();
        return Module{boost::nowide::widen(path.filename().native()), module.base};
    }

    [[nodiscard]] std::optional<std::wstring> symbolOf(Address address) override {
        Dl_info info{};
        if (dladdr(reinterpret_cast<void*>(address), &info) == 0 || info.dli_sname == nullptr)
            return std::nullopt;
        return boost::nowide::widen(boost::core::demangle(info.dli_sname));
    }

    // Debugging information is read by another process, later.
    [[nodiscard]] std::optional<Line> lineOf(Address /*address*/) override { return std::nullopt; }

    [[nodiscard]] std::vector<Address> captureBackTrace(std::size_t limit) override {
        CrashFrames own;
        const CrashFrames* frames = recordedFrames();
        if (frames == nullptr) {
            captureFrames(own);
            frames = &own;
        }
        return {frames->counters, frames->counters + std::min(limit, frames->count)};
    }

    void walk(const void* context, const Visitor& visit) override {
        const auto& frames = *static_cast<const CrashFrames*>(context);
        for (std::size_t i = 0; i < frames.count; ++i) {
            const bool last = i + 1 == frames.count;
            if (!visit(frames.counters[i], last ? 0 : frames.counters[i + 1]))
                return;
        }
    }
};

} // namespace

CrashStackApi& CrashStackApi::system() {
    // Never destroyed: a process may crash while it ends.
    static CrashStackApi& api = *new LinuxCrashStackApi;
    return api;
}

} // namespace orbelantine
