#pragma once

#include "tests/phone/linux/TestHost.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sdbus-c++/sdbus-c++.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <fstream>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace orbelantine::bridge {

/// A dbus-daemon of its own, for whoever knows its address.
class PrivateBus {
  public:
    PrivateBus() {
        const std::string config = mFolder / "bus.conf";
        std::ofstream(config) << "<busconfig><type>session</type><listen>" << address()
                              << "</listen><policy context=\"default\">"
                                 "<allow send_destination=\"*\" eavesdrop=\"true\"/>"
                                 "<allow eavesdrop=\"true\"/><allow own=\"*\"/>"
                                 "</policy></busconfig>";
        start({"dbus-daemon", "--nofork", "--print-address=1", "--config-file=" + config});
    }

    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    ~PrivateBus() { stop(); }

    /// False where dbus-daemon isn't installed.
    [[nodiscard]] bool runs() const { return mProcess > 0; }

    [[nodiscard]] std::string address() const { return "unix:path=" + (mFolder / "bus"); }

    void stop() {
        if (!runs())
            return;
        ::kill(mProcess, SIGTERM);
        ::waitpid(mProcess, nullptr, 0);
        mProcess = -1;
    }

  private:
    /// Returns when the daemon has printed its address: it listens then.
    void start(std::vector<std::string> words) {
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        std::array<int, 2> ends{};
        ASSERT_EQ(::pipe(ends.data()), 0);
        const phone::FileDescriptor reader(ends[0]);
        phone::FileDescriptor writer(ends[1]);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, writer.get(), STDOUT_FILENO);
        // It complains of limits that don't matter here.
        ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        if (::posix_spawnp(&mProcess, arguments[0], &actions, nullptr, arguments.data(), environ) !=
            0)
            mProcess = -1;
        ::posix_spawn_file_actions_destroy(&actions);
        writer = phone::FileDescriptor();
        std::array<char, 256> line{};
        if (runs()) {
            EXPECT_GT(::read(reader.get(), line.data(), line.size()), 0);
        }
    }

    phone::TemporaryFolder mFolder;
    pid_t mProcess = -1;
};

/// BlueZ as far as the profiles go, on a thread of its own.
class FakeBlueZ {
  public:
    using Options = std::map<std::string, sdbus::Variant>;

    /// `refusal`: the error that it answers with; empty to take the profile.
    explicit FakeBlueZ(const std::string& bus, std::string refusal = "")
        : mConnection(sdbus::createSessionBusConnectionWithAddress(bus))
        , mObject(sdbus::createObject(*mConnection, "/org/bluez"))
        , mRefusal(std::move(refusal)) {
        constexpr const char* kManager = "org.bluez.ProfileManager1";
        mObject->registerMethod("RegisterProfile")
            .onInterface(kManager)
            .implementedAs([this](const sdbus::ObjectPath& path, const std::string& uuid,
                                  const Options& options) {
                if (!mRefusal.empty())
                    throw sdbus::Error(mRefusal, "as told");
                const std::lock_guard lock(mMutex);
                mSender = mObject->getCurrentlyProcessedMessage()->getSender();
                mPath = path;
                mUuid = uuid;
                mOptions = options;
            });
        mObject->registerMethod("UnregisterProfile")
            .onInterface(kManager)
            .implementedAs([this](const sdbus::ObjectPath& path) {
                const std::lock_guard lock(mMutex);
                if (path == mPath)
                    mPath.clear();
            });
        mObject->finishRegistration();
        mConnection->requestName("org.bluez");
        mConnection->enterEventLoopAsync();
    }

    FakeBlueZ(const FakeBlueZ&) = delete;
    FakeBlueZ& operator=(const FakeBlueZ&) = delete;

    ~FakeBlueZ() { mConnection->leaveEventLoop(); }

    /// The profile's object; empty while there is none.
    std::string path() { return locked(mPath); }

    std::string uuid() { return locked(mUuid); }

    /// Who has the profile, by its name on the bus.
    std::string sender() { return locked(mSender); }

    template <typename T>
    T option(const std::string& name) {
        const std::lock_guard lock(mMutex);
        return mOptions.at(name).get<T>();
    }

  private:
    std::string locked(const std::string& text) {
        const std::lock_guard lock(mMutex);
        return text;
    }

    std::mutex mMutex;
    std::string mSender;
    std::string mPath;
    std::string mUuid;
    Options mOptions;
    std::unique_ptr<sdbus::IConnection> mConnection;
    std::unique_ptr<sdbus::IObject> mObject;
    std::string mRefusal;
};

} // namespace orbelantine::bridge
