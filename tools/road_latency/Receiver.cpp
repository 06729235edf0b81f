#include "tools/road_latency/Receiver.h"

#include "bluetooth/DriverProtocol.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <stdexcept>

namespace orbelantine::latency {

namespace {

constexpr const char* kVariable = "ORBELANTINE_DEVICE_DIR";
constexpr phone::Address kAddress{{0x00, 0x11, 0x22, 0x33, 0x44, 0x55}};
constexpr std::size_t kCodeSize = 4;
/// The greeting is shorter than any report.
constexpr std::size_t kShortestReport = 8;
constexpr std::chrono::seconds kBound(10);

std::string makeFolder() {
    std::string name =
        (std::filesystem::temp_directory_path() / "orbelantine-road-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("cannot make the folder " + name);
    ::setenv(kVariable, name.c_str(), 1);
    return name;
}

/// 0 for success, then the output; all numbers are little-endian.
void reply(int connection, std::uint32_t code) {
    std::array<std::uint8_t, 8> answer{};
    std::size_t size = kCodeSize;
    if (code == driver::kGetVersion) {
        answer[size] = driver::kExpectedHidVersion;
        size += 2;
    } else if (code == driver::kGetType || code == driver::kIsConnected) {
        answer[size] = code == driver::kGetType ? 2 : 1;
        size += 4;
    }
    (void)::send(connection, answer.data(), size, MSG_NOSIGNAL);
}

} // namespace

Receiver::Receiver()
    : mFolder(makeFolder())
    , mSocket(std::in_place, mFolder, kAddress) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        throw std::runtime_error("cannot make a pipe");
    mStopReader = FileDescriptor(ends[0]);
    mStopWriter = FileDescriptor(ends[1]);
    mAcceptor = std::thread([this] { accept(); });
}

Receiver::~Receiver() {
    mStopWriter = FileDescriptor();
    mAcceptor.join();
    for (std::thread& server : mServers)
        server.join();
    mSocket.reset();
    ::unsetenv(kVariable);
    std::filesystem::remove_all(mFolder);
}

FileDescriptor Receiver::open() const {
    FileDescriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    mSocket->path().copy(address.sun_path, sizeof(address.sun_path) - 1);
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        throw std::runtime_error("cannot connect to " + mSocket->path());
    return socket;
}

Clock::time_point Receiver::awaitReport(std::uint64_t count) {
    std::unique_lock lock(mMutex);
    if (!mArrived.wait_for(lock, kBound, [&] { return mCount >= count; }))
        throw std::runtime_error("report " + std::to_string(count) + " has not come");
    return mLast;
}

void Receiver::accept() {
    pollfd watched[] = {{mSocket->descriptor(), POLLIN, 0}, {mStopReader.get(), 0, 0}};
    while (::poll(watched, std::size(watched), -1) >= 0 && watched[1].revents == 0) {
        const int connection = ::accept4(mSocket->descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
        if (connection >= 0)
            mServers.emplace_back([this, connection] { serve(connection); });
    }
}

void Receiver::serve(int connection) {
    const FileDescriptor owner(connection);
    std::array<std::uint8_t, 64> packet{};
    for (;;) {
        const ssize_t size = ::recv(connection, packet.data(), packet.size(), 0);
        const Clock::time_point now = Clock::now();
        if (size < static_cast<ssize_t>(kCodeSize))
            return;
        std::uint32_t code = 0;
        std::memcpy(&code, packet.data(), sizeof(code));
        if (code != 0) {
            reply(connection, code);
        } else if (static_cast<std::size_t>(size) >= kCodeSize + kShortestReport) {
            {
                const std::lock_guard lock(mMutex);
                mLast = now;
                ++mCount;
            }
            mArrived.notify_one();
        }
    }
}

} // namespace orbelantine::latency
