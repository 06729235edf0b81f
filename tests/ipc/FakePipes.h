#pragma once

#include "core/common/errors/ErrorCode.h"
#include "ipc/pipe/PipeSystem.h"

#include <cstdint>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// A system of pipes whose answers are scripted, and which notes what it was asked. One thread
/// calls at a time.
class FakePipes final : public PipeApi, public UserApi {
  public:
    using Error = std::uint32_t;
    using Handle = PipeHandle;

    // No descriptors of this process.
    static constexpr Handle kPipe = 1'000'001;
    static constexpr Handle kEvent = 1'000'002;
    static constexpr Handle kProcess = 1'000'003;
    static constexpr Handle kToken = 1'000'004;
    static constexpr std::uint32_t kPeerId = 42;

    /// Answers in place of success, by the name of the call, in order; the last one stays.
    std::map<std::string, std::deque<Error>> answers;
    /// Runs within the call of that name.
    std::map<std::string, std::function<void()>> hooks;
    std::vector<std::string> calls;
    std::wstring descriptor;
    NamedPipe params{};
    int openTexts = 0;

    /// The calls since the last time.
    [[nodiscard]] std::vector<std::string> taken() { return std::exchange(calls, {}); }

    Error lastError() override { return mLastError; }

    Error waitNamedPipe(const std::string& name, std::uint32_t timeout) override {
        return answer("wait", name + " " + std::to_string(timeout));
    }

    Error createFile(const std::string& name, std::uint32_t access, std::uint32_t flags,
                     Handle& pipe) override {
        pipe = kPipe;
        return answer("open", name + " " + hex(access) + " " + hex(flags));
    }

    Error createNamedPipe(const std::string& name, const NamedPipe& asked, void* access,
                          Handle& pipe) override {
        params = asked;
        descriptor = static_cast<const wchar_t*>(access);
        pipe = kPipe;
        return answer("create", name);
    }

    Error connectNamedPipe(Handle pipe, Overlapped& overlapped) override {
        return answer("connect", handle(pipe) + " " + handle(overlapped.event));
    }

    void disconnectNamedPipe(Handle pipe) override { note("disconnect", handle(pipe)); }

    Error getOverlappedResult(Handle pipe, Overlapped&) override {
        return answer("result", handle(pipe));
    }

    void cancelIo(Handle pipe) override { note("cancel", handle(pipe)); }

    Handle createEvent() override { return answer("event", "") ? 0 : kEvent; }

    std::uint32_t waitForSingleObject(Handle event, std::uint32_t timeout) override {
        return answer("await", handle(event) + " " + std::to_string(timeout));
    }

    void closeHandle(Handle closed) override { note("close", handle(closed)); }

    Error getNamedPipeClientProcessId(Handle pipe, std::uint32_t& id) override {
        id = kPeerId;
        return answer("client id", handle(pipe));
    }

    Error getNamedPipeServerProcessId(Handle pipe, std::uint32_t& id) override {
        id = kPeerId;
        return answer("server id", handle(pipe));
    }

    Error openProcess(Handle, std::uint32_t access, std::uint32_t id, Handle& process) override {
        process = kProcess;
        return answer("process", std::to_string(id) + " " + hex(access));
    }

    Error getModuleFileName(Handle process, std::wstring& path) override {
        path = L"peer.exe";
        return answer("module", handle(process));
    }

    Error openProcessToken(std::uint32_t access, Handle& token) override {
        token = kToken;
        return answer("token", std::to_string(access));
    }

    Error getTokenUser(Handle, void* buffer, std::uint32_t, std::uint32_t& needed) override {
        if (!buffer) {
            needed = 40;
            const Error error = answer("token size", "");
            return error ? error : win32::kErrorInsufficientBuffer;
        }
        const void* sid = this;
        std::memcpy(buffer, &sid, sizeof(sid));
        return answer("token user", "");
    }

    bool isValidSid(const void* sid) override { return sid == this && !answer("valid", ""); }

    Error convertSidToStringSid(const void*, wchar_t*& text) override {
        const Error error = answer("sid", "");
        if (!error)
            text = copy(L"S-1-5-7");
        return error;
    }

    Error convertStringSecurityDescriptor(const std::wstring& text, std::uint32_t revision,
                                          void*& made) override {
        if (const Error error = answer("descriptor", std::to_string(revision)))
            return error;
        made = copy(text.c_str());
        return 0;
    }

    void localFree(void* memory) override {
        --openTexts;
        delete[] static_cast<wchar_t*>(memory);
    }

  private:
    static std::string hex(std::uint32_t value) {
        char text[11];
        (void)std::snprintf(text, sizeof(text), "0x%x", value);
        return text;
    }

    static std::string handle(Handle value) {
        static const std::map<Handle, std::string> kNames{
            {kPipe, "pipe"}, {kEvent, "event"}, {kProcess, "process"}, {kToken, "token"}};
        return kNames.at(value);
    }

    wchar_t* copy(const wchar_t* text) {
        ++openTexts;
        auto* memory = new wchar_t[std::wcslen(text) + 1];
        std::wcscpy(memory, text);
        return memory;
    }

    void note(const std::string& call, const std::string& arguments) {
        calls.push_back(arguments.empty() ? call : call + " " + arguments);
        if (const auto hook = hooks.find(call); hook != hooks.end())
            hook->second();
    }

    Error answer(const std::string& call, const std::string& arguments) {
        note(call, arguments);
        std::deque<Error>& scripted = answers[call];
        if (scripted.empty())
            return 0;
        const Error error = scripted.front();
        if (scripted.size() > 1)
            scripted.pop_front();
        if (error)
            mLastError = error;
        return error;
    }

    Error mLastError = 0;
};

} // namespace orbelantine::test
