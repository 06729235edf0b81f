#include "tools/l2cap_bridge/linux/Program.h"

#include "hid/link/HIDServiceRecord.h"
#include "tools/l2cap_bridge/ServiceRecord.h"
#include "tools/l2cap_bridge/linux/Bridge.h"
#include "tools/l2cap_bridge/linux/Errors.h"
#include "tools/l2cap_bridge/linux/L2capApi.h"
#include "tools/l2cap_bridge/linux/ServiceProfile.h"
#include "tools/program/linux/Files.h"
#include "tools/program/linux/StopSignal.h"

#include <cerrno>
#include <exception>
#include <fstream>
#include <optional>
#include <ostream>
#include <stdexcept>

namespace orbelantine::bridge {

namespace {

/// No radio, or no longer.
class RadioError : public std::runtime_error {
  public:
    explicit RadioError(int error)
        : std::runtime_error(radioAdvice(error)) {}
};

std::string recordXml(const Options& options) {
    HIDServiceRecord record;
    if (!options.name.empty())
        record.serviceName = options.name;
    return serviceRecordXml(record);
}

void requireRadio(L2capApi& l2cap) {
    if (const int error = l2cap.radio())
        throw RadioError(error);
}

void run(const Options& options, L2capApi& l2cap, std::ostream& out,
         const ServiceProfile::Say& say) {
    const phone::StopSignal stop;
    requireRadio(l2cap);
    const phone::Now now = phone::sinceHere();
    std::ofstream logFile;
    phone::EventLog log(options.log.empty() ? nullptr : &logFile, now);
    // Listening comes before the log: a second bridge must not overwrite that of the first.
    Bridge bridge({l2cap, log, now}, options, stop.descriptor());
    phone::openLog(logFile, options.log);
    const std::string phoneAddress = toText(options.address);
    log.write(phone::JsonObject().add("event", "start").add("address", phoneAddress));
    std::optional<ServiceProfile> profile;
    if (options.publishRecord)
        bridge.setSource(profile.emplace(options.bus, recordXml(options), say));
    out << "l2cap_bridge to " << phoneAddress << " is listening in " << bridge.folder()
        << std::endl;
    auto outcome = Bridge::Outcome::GoesOn;
    while (outcome == Bridge::Outcome::GoesOn)
        outcome = bridge.step();
    if (!logFile)
        phone::failToWrite(options.log);
    if (outcome == Bridge::Outcome::RadioLost)
        throw RadioError(ENODEV);
}

} // namespace

ExitStatus runBridge(const Options& options, L2capApi& l2cap, std::ostream& out,
                     std::ostream& err) {
    const auto say = [&err](const std::string& line) {
        err << "l2cap_bridge: " << line << std::endl;
    };
    try {
        run(options, l2cap, out, say);
        return kExitSuccess;
    } catch (const RadioError& error) {
        say(error.what());
        return kExitNoBluetooth;
    } catch (const RecordError& error) {
        say(error.what());
        return kExitNoRecord;
    } catch (const std::exception& failure) {
        say(failure.what());
        return kExitFailure;
    }
}

} // namespace orbelantine::bridge
