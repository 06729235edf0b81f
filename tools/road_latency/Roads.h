#pragma once

#include "core/common/run/IoThread.h"
#include "hid/link/HidInputClient.h"
#include "tools/aim_report/Surface.h"
#include "tools/road_latency/Receiver.h"
#include "tools/road_latency/XWindow.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace orbelantine::latency {

/// A link through which a surface's input goes to the phone's socket.
class Session {
  public:
    /// Returns once the link is up; throws std::runtime_error if it doesn't come up.
    Session(const boost::shared_ptr<IInputContext>& surface, std::uint64_t idleMs);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

  private:
    HidInputClient mClient;
};

/// The library's: a session whose surface raises keys, one down, the next up.
class WholeRoad {
  public:
    explicit WholeRoad(std::uint64_t idleMs)
        : mSession(mSurface, idleMs) {}

    void begin() {}

    void raise();

  private:
    boost::shared_ptr<aim::Surface> mSurface = boost::make_shared<aim::Surface>(1000, 1000);
    Session mSession;
    bool mDown = false;
};

/// The library's, from a key event of X on.
class WindowRoad {
  public:
    explicit WindowRoad(std::uint64_t idleMs);

    void begin() { mWindow.takeFocus(); }

    void raise() { mWindow.pressKey(); }

  private:
    XWindow mWindow{XWindow::Listening::No};
    Session mSession;
};

/// The least that can be done with a key event of X: one client gets it and writes a report.
class WindowFloor {
  public:
    explicit WindowFloor(const Receiver& receiver);
    ~WindowFloor();
    WindowFloor(const WindowFloor&) = delete;
    WindowFloor& operator=(const WindowFloor&) = delete;

    void begin() { mWindow.takeFocus(); }

    void raise() { mHand.pressKey(); }

  private:
    XWindow mHand{XWindow::Listening::No};
    XWindow mWindow{XWindow::Listening::Yes};
    FileDescriptor mSocket;
    std::thread mClient;
};

/// The least that such a road can do: a post to a first worker, from there to a second one, where a
/// report is written while the first one waits.
class Floor {
  public:
    explicit Floor(const Receiver& receiver)
        : mSocket(receiver.open()) {}

    void begin() {}

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
