#include "tools/virtual_phone/program/linux/Program.h"

#include "tools/program/linux/ControlPipe.h"
#include "tools/program/linux/Files.h"
#include "tools/program/linux/StopSignal.h"
#include "tools/virtual_phone/driver/linux/DeviceServer.h"
#include "tools/virtual_phone/picture/Picture.h"
#include "tools/virtual_phone/program/Control.h"

#include <array>
#include <chrono>
#include <exception>
#include <fstream>
#include <optional>
#include <ostream>

namespace orbelantine::phone {

namespace {

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
