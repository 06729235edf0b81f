#pragma once

#include "tools/program/linux/ControlPipe.h"
#include "tools/virtual_phone/driver/Driver.h"
#include "tools/virtual_phone/driver/linux/DeviceServer.h"
#include "tools/virtual_phone/log/EventLog.h"
#include "tools/virtual_phone/phone/Phone.h"
#include "tools/virtual_phone/program/Control.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

namespace orbelantine::phone {

/// Counts the lines of an event log by what they tell of.
class LogCounts final : public std::streambuf {
  public:
    unsigned opens = 0;
    unsigned closes = 0;
    unsigned vanishings = 0;
    unsigned returns = 0;

  protected:
    int_type overflow(int_type c) override {
        if (c == '\n')
            count();
        else
            mLine += static_cast<char>(c);
        return c;
    }

    std::streamsize xsputn(const char* text, std::streamsize size) override {
        mLine.append(text, static_cast<std::size_t>(size));
        return size;
    }

  private:
    void count() {
        constexpr std::string_view kEvent = R"("event":")";
        const std::size_t at = mLine.find(kEvent);
        const std::string_view name = at == std::string::npos
                                          ? std::string_view()
                                          : std::string_view(mLine).substr(at + kEvent.size());
        opens += name.starts_with("open\"") ? 1 : 0;
        closes += name.starts_with("close\"") ? 1 : 0;
        vanishings += name.starts_with("vanish\"") ? 1 : 0;
        returns += name.starts_with("return\"") ? 1 : 0;
        mLine.clear();
    }

    std::string mLine;
};

/// A virtual phone on a thread of this process, in a device folder of its own that the library
/// finds through the environment: made before the library's threads, and gone after them. Any
/// thread may call.
class PhoneThread {
  public:
    /// What the phone has seen up to its last step.
    struct Seen {
        Tally tally;
        std::string text;
        /// The last line of a log that ends here; only if asked for.
        std::string summary;
        /// Of device handles.
        unsigned opens = 0;
        unsigned closes = 0;
        unsigned vanishings = 0;
        unsigned returns = 0;
    };

    enum class Detail { Counts, Summary };

    explicit PhoneThread(const Faults& faults = {}, Detail detail = Detail::Counts)
        : mDetail(detail) {
        if (::mkdtemp(mFolder.data()) == nullptr)
            throw std::runtime_error("cannot make the folder " + mFolder);
        ::setenv(kVariable, mFolder.c_str(), 1);
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0)
            throw std::runtime_error("cannot make a pipe");
        mStopReader = FileDescriptor(ends[0]);
        mStopWriter = FileDescriptor(ends[1]);
        Options options;
        options.devices = mFolder;
        options.faults = faults;
        mDriver.emplace(options.address, faults, mPhone, mLog);
        const auto now = [] {
            return std::chrono::duration_cast<std::chrono::milliseconds>(
                std::chrono::steady_clock::now().time_since_epoch());
        };
        mServer.emplace(DeviceServer::Parts{*mDriver, mLog, now}, options, mStopReader.get());
        mPath = mServer->path();
        mServer->setControl(mPipe.emplace(controlPath(), mControl));
        mThread = std::thread([this] { run(); });
    }

    ~PhoneThread() {
        mStopWriter = FileDescriptor();
        mThread.join();
        mServer.reset();
        mPipe.reset();
        ::unsetenv(kVariable);
        std::filesystem::remove_all(mFolder);
    }

    PhoneThread(const PhoneThread&) = delete;
    PhoneThread& operator=(const PhoneThread&) = delete;

    [[nodiscard]] Seen seen() const {
        const std::lock_guard lock(mMutex);
        return mSeen;
    }

    /// Until what has been seen satisfies `condition`; false if it doesn't in time.
    template <class Condition>
    [[nodiscard]] bool await(Condition condition,
                             std::chrono::milliseconds bound = std::chrono::seconds(10)) {
        std::unique_lock lock(mMutex);
        return mStepped.wait_for(lock, bound, [&] { return condition(std::as_const(mSeen)); });
    }

    /// Until all that went out on handles closed since has been taken.
    [[nodiscard]] bool awaitAllClosed() {
        awaitTurn();
        return await([](const Seen& seen) { return seen.opens == seen.closes; });
    }

    /// Disappears, with every open handle, and comes back after so long.
    void vanish(std::chrono::milliseconds time) {
        std::ofstream(controlPath()) << "vanish " << time.count() << std::endl;
    }

  private:
    static constexpr const char* kVariable = "ORBELANTINE_DEVICE_DIR";

    [[nodiscard]] std::string controlPath() const { return mFolder + "/control"; }

    /// Handles are taken in the order of their opening: one more that is answered comes after all
    /// that were opened before.
    void awaitTurn() const {
        constexpr std::array<std::uint8_t, 4> kGetVersion = {0x08, 0, 0x22, 0};
        const FileDescriptor handle(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        mPath.copy(address.sun_path, sizeof(address.sun_path) - 1);
        std::array<std::uint8_t, 16> answer{};
        if (::connect(handle.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) !=
                0 ||
            ::send(handle.get(), kGetVersion.data(), kGetVersion.size(), MSG_NOSIGNAL) < 0 ||
            ::recv(handle.get(), answer.data(), answer.size(), 0) <= 0)
            throw std::runtime_error("the phone does not answer at " + mPath);
    }

    void run() {
        while (mServer->step()) {
            {
                const std::lock_guard lock(mMutex);
                look();
            }
            mStepped.notify_all();
        }
    }

    void look() {
        mSeen.tally = mPhone.tally();
        mSeen.text = mPhone.textField().text();
        if (mDetail == Detail::Summary)
            mSeen.summary = mPhone.summary().text();
        mSeen.opens = mCounts.opens;
        mSeen.closes = mCounts.closes;
        mSeen.vanishings = mCounts.vanishings;
        mSeen.returns = mCounts.returns;
    }

    const Detail mDetail;
    std::string mFolder =
        (std::filesystem::temp_directory_path() / "orbelantine-phone-XXXXXX").string();
    // Of the device.
    std::string mPath;
    FileDescriptor mStopReader;
    FileDescriptor mStopWriter;
    LogCounts mCounts;
    std::ostream mLines{&mCounts};
    // What follows belongs to the thread once it runs.
    EventLog mLog{&mLines, [] { return std::chrono::milliseconds(0); }};
    Phone mPhone{Screen(), mLog};
    Control mControl{mPhone, [this](auto time) { mServer->vanishFor(time); }};
    std::optional<Driver> mDriver;
    std::optional<ControlPipe> mPipe;
    std::optional<DeviceServer> mServer;

    mutable std::mutex mMutex;
    std::condition_variable mStepped;
    Seen mSeen;
    std::thread mThread;
};

} // namespace orbelantine::phone
