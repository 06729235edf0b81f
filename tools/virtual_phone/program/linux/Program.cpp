#include "tools/virtual_phone/program/linux/Program.h"

#include "tools/program/linux/StopSignal.h"
#include "tools/virtual_phone/driver/linux/DeviceServer.h"
#include "tools/virtual_phone/picture/Picture.h"
#include "tools/virtual_phone/program/Control.h"
#include "tools/virtual_phone/program/linux/ControlPipe.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <utility>

namespace orbelantine::phone {

namespace {

[[noreturn]] void failToWrite(const std::string& path) {
    throw std::runtime_error("cannot write " + path + ": " + std::strerror(errno));
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::trunc);
    if (!(file << text << std::flush))
        failToWrite(path);
}

/// Stands while the phone listens. It appears with its content, never before it.
class ReadyFile {
  public:
    ReadyFile(std::string path, const std::string& content)
        : mPath(std::move(path)) {
        if (mPath.empty())
            return;
        const std::string unfinished = mPath + ".new";
        writeFile(unfinished, content);
        if (std::rename(unfinished.c_str(), mPath.c_str()) != 0)
            failToWrite(mPath);
    }

    ReadyFile(const ReadyFile&) = delete;
    ReadyFile& operator=(const ReadyFile&) = delete;

    ~ReadyFile() {
        if (!mPath.empty())
            ::unlink(mPath.c_str());
    }

  private:
    std::string mPath;
};

void openLog(std::ofstream& file, const std::string& path) {
    if (path.empty())
        return;
    file.open(path, std::ios::trunc);
    if (!file)
        failToWrite(path);
}

Now sinceHere() {
    using std::chrono::steady_clock;
    return [start = steady_clock::now()] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
    };
}

JsonObject startEvent(const Options& options) {
    return JsonObject()
        .add("event", "start")
        .add("name", options.name)
        .add("address", toText(options.address))
        .add("screen", std::array{options.screen.width, options.screen.height})
        .add("scale", options.screen.scale)
        .add("rotation", options.screen.rotation)
        .add("acceleration", nameOf(options.acceleration));
}

void drawTo(const std::string& path, const Options& options, const Phone& phone) {
    if (!path.empty())
        writeFile(path, drawPicture(options.name, toText(options.address), phone));
}

void run(const Options& options, std::ostream& out) {
    const StopSignal stop;
    const Now now = sinceHere();
    std::ofstream logFile;
    EventLog log(options.log.empty() ? nullptr : &logFile, now);
    Phone phone(options.screen, log, options.acceleration);
    Driver driver(options.address, options.faults, phone, log);
    // Listening comes before any file: a second phone must not overwrite those of the first.
    DeviceServer server({driver, log, now}, options, stop.descriptor());

    openLog(logFile, options.log);
    log.write(startEvent(options));
    Control control(phone, [&server](std::chrono::milliseconds time) { server.vanishFor(time); });
    std::optional<ControlPipe> pipe;
    if (!options.control.empty())
        server.setControl(pipe.emplace(options.control, control));
    // That the picture can't be written is said before the session, not after it.
    drawTo(options.picture, options, phone);
    const ReadyFile ready(options.readyFile, server.path() + "\n");
    out << "virtual phone " << toText(options.address) << " is listening in " << server.folder()
        << std::endl;
    while (server.step()) {
    }
    // What is held at the end is told before the hang-up releases it.
    const JsonObject summary = phone.summary();
    server.hangUp();
    log.write(summary);
    drawTo(options.picture, options, phone);
    if (!logFile)
        failToWrite(options.log);
}

} // namespace

int runVirtualPhone(const Options& options, std::ostream& out, std::ostream& err) {
    try {
        run(options, out);
        return 0;
    } catch (const std::exception& failure) {
        err << "virtual_phone: " << failure.what() << std::endl;
        return 1;
    }
}

} // namespace orbelantine::phone
