#pragma once

#include "core/common/probes/WlanApi.h"
#include "tests/support/Journal.h"

#include <functional>
#include <mutex>
#include <string>
#include <utility>

namespace orbelantine::test {

/// A computer with wireless adapters, and with what was asked of them.
class FakeWlanApi final : public WlanApi {
  public:
    FakeWlanApi() { streamingJournal = &journal; }

    Error open(Handle& handle) override {
        journal.note("open");
        handle = this;
        return openError;
    }

    void close(Handle /*handle*/) override { journal.note("close"); }

    Error listen(Handle /*handle*/, Notified notified) override {
        {
            const std::lock_guard lock(mMutex);
            mNotified = std::move(notified);
        }
        journal.note("listen");
        return 0;
    }

    void unlisten(Handle /*handle*/) override {
        journal.note("unlisten");
        const std::lock_guard lock(mMutex);
        mNotified = nullptr;
    }

    Error enumerate(Handle /*handle*/, Interfaces& interfaces) override {
        interfaces.list = adapters;
        if (const auto act = std::exchange(whileEnumerating, nullptr))
            act();
        journal.note("enumerate");
        return enumerateError;
    }

    Error set(Handle /*handle*/, const Guid& guid, Operation operation, bool value) override {
        journal.note("set " + std::to_string(guid[0]) + " " +
                     std::to_string(static_cast<int>(operation)) + " " + std::to_string(value));
        return setError;
    }

    std::wstring textOf(const Guid& guid) override {
        return guid[0] != 0 ? L"{" + std::to_wstring(guid[0]) + L"}" : L"";
    }

    Module load(const wchar_t* name) override {
        journal.note("load");
        return hasLibrary && name == std::wstring(L"Windows.Networking.dll") ? this : nullptr;
    }

    Procedure procedure(Module /*module*/, const char* name) override {
        const bool known = name == std::string("SetSocketMediaStreamingMode");
        return known ? reinterpret_cast<Procedure>(setStreaming) : nullptr;
    }

    void unload(Module /*module*/) override { journal.note("unload"); }

    /// As the system does, on the calling thread.
    void notify(std::uint32_t source, std::uint32_t code) {
        const std::lock_guard lock(mMutex);
        if (mNotified)
            mNotified(source, code);
    }

    Journal journal;
    std::vector<Interface> adapters;
    /// Called by the next enumeration alone.
    std::function<void()> whileEnumerating;
    bool hasLibrary = true;
    Error openError = 0;
    Error enumerateError = 0;
    Error setError = 0;

  private:
    static std::int32_t setStreaming(bool enabled) {
        streamingJournal->note(enabled ? "streaming" : "no streaming");
        return 0;
    }

    static inline Journal* streamingJournal = nullptr;
    std::mutex mMutex;
    Notified mNotified;
};

} // namespace orbelantine::test
