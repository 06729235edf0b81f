#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orbelantine {

/// What the system knows of addresses and stacks. On the thread that records a crash.
class CrashStackApi {
  public:
    using Address = std::uint64_t;

    struct Module {
        std::wstring name;
        Address base = 0;
    };

    struct Line {
        std::wstring file;
        std::uint32_t number = 0;
    };

    /// Told of a frame; false ends the walk.
    using Visitor = std::function<bool(Address programCounter, Address returnAddress)>;

    virtual ~CrashStackApi() = default;

    /// SymInitialize, with symbol names undecorated and lines loaded.
    virtual void begin() = 0;
    /// SymCleanup
    virtual void end() = 0;
    [[nodiscard]] virtual std::optional<Module> moduleOf(Address address) = 0;
    [[nodiscard]] virtual std::optional<std::wstring> symbolOf(Address address) = 0;
    [[nodiscard]] virtual std::optional<Line> lineOf(Address address) = 0;
    /// RtlCaptureStackBackTrace: the calling thread's frames, innermost first.
    [[nodiscard]] virtual std::vector<Address> captureBackTrace(std::size_t limit) = 0;
    /// StackWalk64, on from where `context` stands, innermost first.
    virtual void walk(const void* context, const Visitor& visit) = 0;

    /// The process's real system; lives until the process ends.
    static CrashStackApi& system();
};

} // namespace orbelantine
