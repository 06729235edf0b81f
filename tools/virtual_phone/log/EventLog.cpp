#include "tools/virtual_phone/log/EventLog.h"

#include <ostream>
#include <string>
#include <utility>

namespace orbelantine::phone {

Now sinceHere() {
    using std::chrono::steady_clock;
    return [start = steady_clock::now()] {
        return std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
    };
}

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
