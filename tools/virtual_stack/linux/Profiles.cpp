#include "tools/virtual_stack/linux/Profiles.h"

#include <utility>

namespace orbelantine::stack {

Profiles::Profiles(sdbus::IConnection& connection, const std::string& path, std::string refusal,
                   Recorder& recorder)
    : mRecorder(recorder)
    , mRefusal(std::move(refusal))
    , mObject(connection, path, "org.bluez.ProfileManager1") {
    mObject.method("RegisterProfile", [this](const sdbus::ObjectPath& profile,
                                             const std::string& uuid, const Variants& options) {
        mRecorder.add({"RegisterProfile", profile, uuid, mObject.sender()});
        if (!mRefusal.empty())
            throw sdbus::Error(mRefusal, "as told");
        mRecorder.change([&](Seen& seen) {
            seen.profile = {mObject.sender(), profile, uuid, options};
        });
    });
    mObject.method("UnregisterProfile", [this](const sdbus::ObjectPath& profile) {
        mRecorder.add({"UnregisterProfile", profile, "", mObject.sender()});
        mRecorder.change([&](Seen& seen) {
            if (profile == seen.profile.path)
                seen.profile.path.clear();
        });
    });
    mObject.publish();
}

void Profiles::forget(const std::string& client) {
    mRecorder.change([&](Seen& seen) {
        if (seen.profile.sender == client)
            seen.profile.path.clear();
    });
}

} // namespace orbelantine::stack
