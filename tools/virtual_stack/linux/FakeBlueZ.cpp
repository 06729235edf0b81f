#include "tools/virtual_stack/linux/FakeBlueZ.h"

#include "tools/virtual_stack/linux/Agents.h"
#include "tools/virtual_stack/linux/BusThread.h"
#include "tools/virtual_stack/linux/Profiles.h"
#include "tools/virtual_stack/linux/Radio.h"
#include "tools/virtual_stack/linux/Surroundings.h"

#include <sdbus-c++/sdbus-c++.h>

#include <map>
#include <optional>
#include <utility>

namespace orbelantine::stack {

namespace {

constexpr const char* kStackName = "org.bluez";
constexpr const char* kStackPath = "/org/bluez";
constexpr const char* kBusName = "org.freedesktop.DBus";

std::unique_ptr<sdbus::IConnection> connectTo(const std::string& bus) {
    return bus.empty() ? sdbus::createSystemBusConnection()
                       : sdbus::createSessionBusConnectionWithAddress(bus);
}

/// The stack's presence on a bus.
struct Presence {
    Presence(const FakeBlueZ::Options& options, Recorder& recorder,
             std::function<void(const std::string&)> left)
        : connection(connectTo(options.bus))
        , agents(*connection, kStackPath, recorder)
        , profiles(*connection, kStackPath, options.profileRefusal, recorder)
        , names(sdbus::createProxy(*connection, kBusName, "/org/freedesktop/DBus")) {
        connection->addObjectManager("/", sdbus::floating_slot);
        names->uponSignal("NameOwnerChanged")
            .onInterface(kBusName)
            .call([gone = std::move(left)](const std::string& name, const std::string&,
                                           const std::string& owner) {
                if (owner.empty())
                    gone(name);
            });
        names->finishRegistration();
    }

    std::unique_ptr<sdbus::IConnection> connection;
    Agents agents;
    Profiles profiles;
    std::unique_ptr<sdbus::IProxy> names;
    Surroundings::Bus bus{*connection, agents};
};

} // namespace

/// All of it but the recorder belongs to the thread.
class FakeBlueZ::Stack {
  public:
    explicit Stack(const Options& options)
        : mOptions(options)
        , mRecorder(options.observer) {
        mThread.run([this] { start(); });
    }

    Stack(const Stack&) = delete;
    Stack& operator=(const Stack&) = delete;

    ~Stack() {
        mThread.run([this] {
            leave();
            mRadios.clear();
        });
    }

    template <class Job>
    auto run(Job job) {
        return mThread.run([this, &job] { return job(*this); });
    }

    void start() {
        if (mPresence)
            return;
        mPresence.emplace(mOptions, mRecorder,
                          [this](const std::string& client) { forgetClient(client); });
        mSurroundings.bus = &mPresence->bus;
        try {
            mPresence->connection->requestName(kStackName);
        } catch (...) {
            leave();
            throw;
        }
        for (const auto& [name, radio] : mRadios)
            radio->publish();
        mThread.serve(mPresence->connection.get());
    }

    void leave() {
        mThread.serve(nullptr);
        // One that has crashed answers nobody.
        mSurroundings.bus = nullptr;
        for (const auto& [name, radio] : mRadios)
            radio->withdraw();
        mSurroundings.retired.clear();
        mPresence.reset();
        mRecorder.change([](Seen& seen) {
            seen.agents.clear();
            seen.profile.path.clear();
        });
    }

    [[nodiscard]] Radio* radio(const std::string& name) const {
        const auto place = mRadios.find(name);
        return place == mRadios.end() ? nullptr : place->second.get();
    }

    [[nodiscard]] RemoteDevice* device(const std::string& address) const {
        for (const auto& [name, radio] : mRadios)
            if (RemoteDevice* device = radio->device(address))
                return device;
        return nullptr;
    }

    Surroundings& surroundings() { return mSurroundings; }

    Recorder& recorder() { return mRecorder; }

    std::map<std::string, std::unique_ptr<Radio>>& radios() { return mRadios; }

  private:
    void forgetClient(const std::string& client) {
        mPresence->agents.forget(client);
        mPresence->profiles.forget(client);
        for (const auto& [name, radio] : mRadios)
            radio->forgetClient(client);
    }

    const Options mOptions;
    Recorder mRecorder;
    Surroundings mSurroundings{
        mRecorder,
        [this](std::function<void()> task) { mThread.post(std::move(task)); },
        nullptr,
        {}};
    std::optional<Presence> mPresence;
    std::map<std::string, std::unique_ptr<Radio>> mRadios;
    BusThread mThread{[this] {
        mRecorder.add({"bus_lost", "", "", ""});
        leave();
    }};
};

FakeBlueZ::FakeBlueZ(const Options& options)
    : mStack(std::make_unique<Stack>(options)) {}

FakeBlueZ::~FakeBlueZ() = default;

void FakeBlueZ::stop() {
    mStack->run([](Stack& stack) { stack.leave(); });
}

void FakeBlueZ::restart() {
    mStack->run([](Stack& stack) {
        stack.leave();
        stack.start();
    });
}

void FakeBlueZ::addAdapter(const AdapterSettings& settings) {
    mStack->run([&](Stack& stack) {
        stack.radios()[settings.name].reset();
        stack.radios()[settings.name] = std::make_unique<Radio>(stack.surroundings(), settings);
    });
}

void FakeBlueZ::removeAdapter(const std::string& name) {
    mStack->run([&](Stack& stack) { stack.radios().erase(name); });
}

void FakeBlueZ::power(bool on, const std::string& adapter) {
    mStack->run([&](Stack& stack) {
        if (Radio* radio = stack.radio(adapter))
            radio->power(on);
    });
}

void FakeBlueZ::addDevice(const DeviceSettings& settings) {
    mStack->run([&](Stack& stack) {
        if (Radio* radio = stack.radio(settings.adapter))
            radio->addDevice(settings);
    });
}

void FakeBlueZ::removeDevice(const std::string& address) {
    mStack->run([&](Stack& stack) {
        for (const auto& [name, radio] : stack.radios())
            radio->removeDevice(address);
    });
}

DeviceSettings FakeBlueZ::device(const std::string& address) const {
    return mStack->run([&](Stack& stack) {
        const RemoteDevice* device = stack.device(address);
        return device == nullptr ? DeviceSettings{} : device->settings();
    });
}

void FakeBlueZ::dropFound() {
    mStack->run([](Stack& stack) {
        for (const auto& [name, radio] : stack.radios())
            radio->dropFound();
    });
}

void FakeBlueZ::simulateSignals(unsigned times) {
    mStack->run([&](Stack& stack) {
        for (const auto& [name, radio] : stack.radios())
            radio->signal(times);
    });
}

void FakeBlueZ::phoneAsks(const std::string& address, Asking kind) {
    mStack->run([&](Stack& stack) {
        if (RemoteDevice* device = stack.device(address))
            device->ask(kind);
    });
}

void FakeBlueZ::phoneCancels(const std::string& address) {
    mStack->run([&](Stack& stack) {
        if (RemoteDevice* device = stack.device(address))
            device->cancel();
    });
}

void FakeBlueZ::forgetSeen() {
    mStack->recorder().change([](Seen& seen) {
        seen.events.clear();
        seen.filters.clear();
    });
}

Seen FakeBlueZ::seen() const {
    return mStack->recorder().seen();
}

bool FakeBlueZ::waitUntil(const std::function<bool(const Seen&)>& isSo,
                          std::chrono::milliseconds longest) const {
    return mStack->recorder().wait(isSo, longest);
}

} // namespace orbelantine::stack
