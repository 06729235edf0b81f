#include "tools/virtual_stack/program/linux/Program.h"

#include "tools/program/linux/ControlPipe.h"
#include "tools/program/linux/Files.h"
#include "tools/program/linux/StopSignal.h"
#include "tools/virtual_phone/log/EventLog.h"
#include "tools/virtual_stack/linux/FakeBlueZ.h"
#include "tools/virtual_stack/linux/PrivateBus.h"
#include "tools/virtual_stack/program/linux/Control.h"

#include <poll.h>
#include <sdbus-c++/sdbus-c++.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <ostream>
#include <stdexcept>

namespace orbelantine::stack {

namespace {

/// The log, written from the stack's thread and from the main one.
class StackLog {
  public:
    explicit StackLog(const std::string& path) {
        phone::openLog(mFile, path);
        mWrites = !path.empty();
    }

    void write(const phone::JsonObject& event) {
        const std::lock_guard lock(mMutex);
        mLog.write(event);
    }

    [[nodiscard]] bool isWhole() const { return !mWrites || mFile.good(); }

  private:
    std::mutex mMutex;
    std::ofstream mFile;
    bool mWrites = false;
    phone::EventLog mLog{&mFile, phone::sinceHere()};
};

phone::JsonObject lineOf(const Event& event) {
    phone::JsonObject line;
    line.add("event", event.what);
    if (!event.subject.empty())
        line.add("subject", event.subject);
    if (!event.detail.empty())
        line.add("detail", event.detail);
    if (!event.client.empty())
        line.add("client", event.client);
    return line;
}

std::string busOf(const Options& options, std::optional<PrivateBus>& own) {
    if (!options.bus.empty())
        return options.bus;
    own.emplace();
    if (!own->runs())
        throw std::runtime_error("a bus of its own can't be started: install dbus-daemon (Debian's "
                                 "package dbus), or name a bus with --bus");
    return own->address();
}

std::string adviceFor(const sdbus::Error& error, const std::string& bus) {
    return error.getName() == "org.freedesktop.DBus.Error.FileExists" ||
                   error.getMessage().find("File exists") != std::string::npos
               ? "there is an org.bluez on the bus " + bus + " already: choose another with --bus"
               : "the bus " + bus + " can't be used: " + error.getMessage() +
                     "; choose another with --bus, or leave it away for one of its own";
}

/// Serves the control until a signal comes, or the bus has gone.
class Session {
  public:
    Session(const Options& options, const std::string& bus, std::ostream& err)
        : mErr(err)
        , mBusLost(::eventfd(0, EFD_CLOEXEC))
        , mLog(options.log)
        , mStack({.bus = bus, .observer = [this](const Event& event) { observe(event); }})
        , mControl(mStack, [this](const std::string& wrong) { complain(wrong); }) {
        mStack.addAdapter();
        for (const DeviceSettings& device : options.devices)
            mControl.add(device);
        if (!options.control.empty())
            mPipe.emplace(options.control, mControl);
    }

    void serve(int stopDescriptor) {
        pollfd places[] = {{stopDescriptor, POLLIN, 0},
                           {mBusLost.get(), POLLIN, 0},
                           {mPipe ? mPipe->descriptor() : -1, POLLIN, 0}};
        while (places[0].revents == 0) {
            if (::poll(places, std::size(places), -1) < 0 && errno != EINTR)
                throw std::runtime_error("poll fails");
            if (places[1].revents != 0)
                throw std::runtime_error("the bus has gone, and the stack with it");
            if (places[2].revents != 0)
                mPipe->read();
        }
    }

    [[nodiscard]] bool isLogWhole() const { return mLog.isWhole(); }

  private:
    void observe(const Event& event) {
        mLog.write(lineOf(event));
        if (event.what == "bus_lost")
            ::eventfd_write(mBusLost.get(), 1);
    }

    void complain(const std::string& wrong) {
        mLog.write(phone::JsonObject().add("event", "error").add("what", wrong));
        mErr << "virtual_stack: " << wrong << std::endl;
    }

    std::ostream& mErr;
    FileDescriptor mBusLost;
    StackLog mLog;
    FakeBlueZ mStack;
    Control mControl;
    std::optional<phone::ControlPipe> mPipe;
};

void run(const Options& options, std::ostream& out, std::ostream& err) {
    // Before any thread, so that none takes the signals.
    const phone::StopSignal stop;
    std::optional<PrivateBus> own;
    const std::string bus = busOf(options, own);
    try {
        Session session(options, bus, err);
        const phone::ReadyFile ready(options.readyFile, bus + "\n");
        out << "virtual stack is on " << bus << std::endl;
        session.serve(stop.descriptor());
        if (!session.isLogWhole())
            phone::failToWrite(options.log);
    } catch (const sdbus::Error& error) {
        throw std::runtime_error(adviceFor(error, bus));
    }
}

} // namespace

int runVirtualStack(const Options& options, std::ostream& out, std::ostream& err) {
    try {
        run(options, out, err);
        return 0;
    } catch (const std::exception& failure) {
        err << "virtual_stack: " << failure.what() << std::endl;
        return 1;
    }
}

} // namespace orbelantine::stack
