#include "core/common/crash/CrashStackApi.h"

// clang-format off
#include <windows.h>
#include <dbghelp.h>
// clang-format on

#include <boost/core/demangle.hpp>
#include <boost/nowide/convert.hpp>

#include <algorithm>

namespace orbelantine {

namespace {

/// The compiler's C++ names aren't those that the system undecorates.
std::wstring undecorated(const std::wstring& name) {
    return boost::nowide::widen(boost::core::demangle(boost::nowide::narrow(name).c_str()));
}

class WindowsCrashStackApi final : public CrashStackApi {
  public:
    void begin() override {
        (void)SymSetOptions(SymGetOptions() | SYMOPT_UNDNAME | SYMOPT_LOAD_LINES);
        (void)SymInitialize(mProcess, nullptr, TRUE);
    }

    void end() override { (void)SymCleanup(mProcess); }

    [[nodiscard]] std::optional<Module> moduleOf(Address address) override {
        IMAGEHLP_MODULEW64 module{};
        module.SizeOfStruct = sizeof module;
        if (SymGetModuleInfoW64(mProcess, address, &module) == FALSE)
            return std::nullopt;
        return Module{module.ModuleName, module.BaseOfImage};
    }

    [[nodiscard]] std::optional<std::wstring> symbolOf(Address address) override {
        struct {
            SYMBOL_INFOW info;
            wchar_t rest[MAX_SYM_NAME];
        } symbol{};

        symbol.info.SizeOfStruct = sizeof symbol.info;
        symbol.info.MaxNameLen = MAX_SYM_NAME;
        DWORD64 offset = 0;
        if (SymFromAddrW(mProcess, address, &offset, &symbol.info) == FALSE)
            return std::nullopt;
        return undecorated(symbol.info.Name);
    }

    [[nodiscard]] std::optional<Line> lineOf(Address address) override {
        IMAGEHLP_LINEW64 line{};
        line.SizeOfStruct = sizeof line;
        DWORD offset = 0;
        if (SymGetLineFromAddrW64(mProcess, address, &offset, &line) == FALSE)
            return std::nullopt;
        return Line{line.FileName, line.LineNumber};
    }

    [[nodiscard]] std::vector<Address> captureBackTrace(std::size_t limit) override {
        std::vector<void*> frames(limit);
        frames.resize(
            RtlCaptureStackBackTrace(0, static_cast<ULONG>(limit), frames.data(), nullptr));
        std::vector<Address> addresses(frames.size());
        std::transform(frames.begin(), frames.end(), addresses.begin(),
                       [](void* frame) { return reinterpret_cast<Address>(frame); });
        return addresses;
    }

    void walk(const void* context, const Visitor& visit) override {
        CONTEXT registers = *static_cast<const CONTEXT*>(context);
        STACKFRAME64 frame{};
        frame.AddrPC = {registers.Rip, 0, AddrModeFlat};
        frame.AddrStack = {registers.Rsp, 0, AddrModeFlat};
        frame.AddrFrame = {registers.Rbp, 0, AddrModeFlat};
        while (StackWalk64(IMAGE_FILE_MACHINE_AMD64, mProcess, GetCurrentThread(), &frame,
                           &registers, nullptr, SymFunctionTableAccess64, SymGetModuleBase64,
                           nullptr) != FALSE)
            if (!visit(frame.AddrPC.Offset, frame.AddrReturn.Offset))
                return;
    }

  private:
    const HANDLE mProcess = GetCurrentProcess();
};

} // namespace

CrashStackApi& CrashStackApi::system() {
    // Never destroyed: a process may crash while it ends.
    static CrashStackApi& api = *new WindowsCrashStackApi;
    return api;
}

} // namespace orbelantine
