#include "core/common/crash/CrashStackApi.h"

#include "core/common/crash/windows/SymbolGuard.h"

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

/// Without symbols, by what the loader knows.
std::optional<CrashStackApi::Module> loadedModule(CrashStackApi::Address address) {
    HMODULE module = nullptr;
    constexpr DWORD kByAddress =
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (GetModuleHandleExW(kByAddress, reinterpret_cast<const wchar_t*>(address), &module) == FALSE)
        return std::nullopt;
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), MAX_PATH));
    const std::wstring name = path.substr(path.find_last_of(L'\\') + 1);
    return CrashStackApi::Module{name.substr(0, name.rfind(L'.')),
                                 reinterpret_cast<CrashStackApi::Address>(module)};
}

/// The same of the stack.
void walkByUnwinding(CONTEXT registers, const CrashStackApi::Visitor& visit) {
    for (;;) {
        const DWORD64 counter = registers.Rip;
        DWORD64 base = 0;
        RUNTIME_FUNCTION* const function = RtlLookupFunctionEntry(counter, &base, nullptr);
        if (function == nullptr) {
            (void)visit(counter, 0);
            return;
        }
        void* data = nullptr;
        DWORD64 frame = 0;
        (void)RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, counter, function, &registers, &data,
                               &frame, nullptr);
        if (!visit(counter, registers.Rip))
            return;
    }
}

/// What can't be read any more, since it was found to be broken, is left out.
class WindowsCrashStackApi final : public CrashStackApi {
  public:
    void begin() override {
        mReadable = true;
        guarded([this] {
            (void)SymSetOptions(SymGetOptions() | SYMOPT_UNDNAME | SYMOPT_LOAD_LINES);
            (void)SymInitialize(mProcess, nullptr, TRUE);
        });
    }

    void end() override {
        guarded([this] { (void)SymCleanup(mProcess); });
    }

    [[nodiscard]] std::optional<Module> moduleOf(Address address) override {
        IMAGEHLP_MODULEW64 module{};
        module.SizeOfStruct = sizeof module;
        bool found = false;
        if (!guarded([&] { found = SymGetModuleInfoW64(mProcess, address, &module) != FALSE; }))
            return loadedModule(address);
        return found ? std::optional(Module{module.ModuleName, module.BaseOfImage}) : std::nullopt;
    }

    [[nodiscard]] std::optional<std::wstring> symbolOf(Address address) override {
        struct {
            SYMBOL_INFOW info;
            wchar_t rest[MAX_SYM_NAME];
        } symbol{};

        symbol.info.SizeOfStruct = sizeof symbol.info;
        symbol.info.MaxNameLen = MAX_SYM_NAME;
        DWORD64 offset = 0;
        bool found = false;
        guarded([&] { found = SymFromAddrW(mProcess, address, &offset, &symbol.info) != FALSE; });
        return found ? std::optional(undecorated(symbol.info.Name)) : std::nullopt;
    }

    [[nodiscard]] std::optional<Line> lineOf(Address address) override {
        IMAGEHLP_LINEW64 line{};
        line.SizeOfStruct = sizeof line;
        DWORD offset = 0;
        bool found = false;
        guarded([&] { found = SymGetLineFromAddrW64(mProcess, address, &offset, &line) != FALSE; });
        return found ? std::optional(Line{line.FileName, line.LineNumber}) : std::nullopt;
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
        const CONTEXT& registers = *static_cast<const CONTEXT*>(context);
        if (!mReadable) {
            walkByUnwinding(registers, visit);
            return;
        }
        CONTEXT walked = registers;
        STACKFRAME64 frame{};
        frame.AddrPC = {registers.Rip, 0, AddrModeFlat};
        frame.AddrStack = {registers.Rsp, 0, AddrModeFlat};
        frame.AddrFrame = {registers.Rbp, 0, AddrModeFlat};
        while (step(frame, walked))
            if (!visit(frame.AddrPC.Offset, frame.AddrReturn.Offset))
                return;
    }

  private:
    bool guarded(const std::function<void()>& read) {
        mReadable = mReadable && readSymbolsGuarded(read);
        return mReadable;
    }

    bool step(STACKFRAME64& frame, CONTEXT& registers) {
        bool stepped = false;
        guarded([&] {
            stepped = StackWalk64(IMAGE_FILE_MACHINE_AMD64, mProcess, GetCurrentThread(), &frame,
                                  &registers, nullptr, SymFunctionTableAccess64, SymGetModuleBase64,
                                  nullptr) != FALSE;
        });
        return stepped;
    }

    const HANDLE mProcess = GetCurrentProcess();
    bool mReadable = false;
};

} // namespace

CrashStackApi& CrashStackApi::system() {
    // Never destroyed: a process may crash while it ends.
    static CrashStackApi& api = *new WindowsCrashStackApi;
    return api;
}

} // namespace orbelantine
