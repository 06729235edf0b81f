#pragma once

#include "core/common/run/IoThread.h"
#include "hid/link/HidInputClient.h"
#include "tools/aim_report/Surface.h"
#include "tools/road_latency/Receiver.h"

#include <boost/smart_ptr/shared_ptr.hpp>

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace orbelantine::latency {

/// The library's: a session whose surface raises keys, one down, the next up.
class WholeRoad {
  public:
    /// Returns once the link is up; throws std::runtime_error if it doesn't come up.
    explicit WholeRoad(std::uint64_t idleMs);
    ~WholeRoad();
    WholeRoad(const WholeRoad&) = delete;
    WholeRoad& operator=(const WholeRoad&) = delete;

    void raise();

  private:
    boost::shared_ptr<aim::Surface> mSurface;
    HidInputClient mClient;
    bool mDown = false;
};

/// The least that such a road can do: a post to a first worker, from there to a second one, where a
/// report is written while the first one waits.
class Floor {
  public:
    explicit Floor(const Receiver& receiver)
        : mSocket(receiver.open()) {}

    void raise();

  private:
    void pass();
    void write();

    FileDescriptor mSocket;
    std::mutex mMutex;
    std::condition_variable mWritten;
    bool mDone = false;
    IoThread mSecond{"FloorSecond"};
    IoThread mFirst{"FloorFirst"};
};

} // namespace orbelantine::latency
