#include "tools/virtual_phone/log/EventLog.h"

#include <ostream>
#include <string>
#include <utility>

namespace orbelantine::phone {

EventLog::EventLog(std::ostream* out, Now now)
    : mOut(out)
    , mNow(std::move(now)) {}

void EventLog::write(const JsonObject& event) {
    if (mOut == nullptr)
        return;
    const std::string members = event.text().substr(1);
    *mOut << "{\"t_ms\":" << mNow().count() << (members == "}" ? "" : ",") << members << std::endl;
}

} // namespace orbelantine::phone
