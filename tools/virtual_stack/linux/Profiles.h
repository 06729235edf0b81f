#pragma once

#include "tools/virtual_stack/linux/BusObject.h"
#include "tools/virtual_stack/linux/Recorder.h"

#include <sdbus-c++/sdbus-c++.h>

#include <string>

namespace orbelantine::stack {

/// The service record that a client has registered, as ProfileManager1 has it.
class Profiles {
  public:
    /// `refusal`: the error that it answers with; empty to take the profile.
    Profiles(sdbus::IConnection& connection, const std::string& path, std::string refusal,
             Recorder& recorder);

    void forget(const std::string& client);

  private:
    Recorder& mRecorder;
    const std::string mRefusal;
    BusObject mObject;
};

} // namespace orbelantine::stack
