#pragma once

#include "tests/phone/linux/TestHost.h"

#include <fcntl.h>
#include <sdbus-c++/sdbus-c++.h>
#include <unistd.h>

#include <csignal>
#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace orbelantine::bridge {

/// A dbus-daemon of its own, for whoever knows its address.
class PrivateBus {
  public:
    /// False where dbus-daemon isn't installed.
    [[nodiscard]] bool runs() const { return mDaemon.runs(); }

    [[nodiscard]] std::string address() const { return "unix:path=" + (mFolder / "bus"); }

    void stop() { mDaemon.end(SIGTERM); }

  private:
    phone::TemporaryFolder mFolder;
    // It prints its address once it listens.
    phone::ChildProcess mDaemon{[listen = "--address=" + address()] {
        // It complains of limits that don't matter here.
        ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO);
        return ::execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--print-address=1",
                        listen.c_str(), nullptr);
    }};
};

/// BlueZ as far as the profiles go, on a thread of its own.
class FakeBlueZ {
  public:
    using Options = std::map<std::string, sdbus::Variant>;

    struct Profile {
        /// Who has it, by its name on the bus.
        std::string sender;
        /// Its object; empty while there is none.
        std::string path;
        std::string uuid;
        Options options;

        template <typename T>
        [[nodiscard]] T option(const std::string& name) const {
            return options.at(name).get<T>();
        }
    };

    /// `refusal`: the error that it answers with; empty to take the profile.
    explicit FakeBlueZ(const std::string& bus, const std::string& refusal = "")
        : mConnection(sdbus::createSessionBusConnectionWithAddress(bus))
        , mObject(sdbus::createObject(*mConnection, "/org/bluez")) {
        constexpr const char* kManager = "org.bluez.ProfileManager1";
        mObject->registerMethod("RegisterProfile")
            .onInterface(kManager)
            .implementedAs([this, refusal](const sdbus::ObjectPath& path, const std::string& uuid,
                                           const Options& options) {
                if (!refusal.empty())
                    throw sdbus::Error(refusal, "as told");
                const std::lock_guard lock(mMutex);
                const std::string sender = mObject->getCurrentlyProcessedMessage()->getSender();
                mProfile = {sender, path, uuid, options};
            });
        mObject->registerMethod("UnregisterProfile")
            .onInterface(kManager)
            .implementedAs([this](const sdbus::ObjectPath& path) {
                const std::lock_guard lock(mMutex);
                if (path == mProfile.path)
                    mProfile.path.clear();
            });
        mObject->finishRegistration();
        mConnection->requestName("org.bluez");
        mConnection->enterEventLoopAsync();
    }

    FakeBlueZ(const FakeBlueZ&) = delete;
    FakeBlueZ& operator=(const FakeBlueZ&) = delete;

    ~FakeBlueZ() { mConnection->leaveEventLoop(); }

    /// As it was last registered.
    Profile profile() {
        const std::lock_guard lock(mMutex);
        return mProfile;
    }

  private:
    std::mutex mMutex;
    Profile mProfile;
    std::unique_ptr<sdbus::IConnection> mConnection;
    std::unique_ptr<sdbus::IObject> mObject;
};

} // namespace orbelantine::bridge
