#include "tools/soak/PipeTalks.h"

#include "core/common/run/IDelayTimer.h"
#include "ipc/pipe/WindowsPipeIPCEndpoint.h"
#include "ipc/pipe/WindowsPipeIPCServer.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>

namespace orbelantine::soak {

namespace {

constexpr const char* kName = "soak";
constexpr std::array<char, 5> kWord{'h', 'e', 'l', 'l', 'o'};

/// A folder for the pipes as long as this object lives.
class PipeFolder {
  public:
    PipeFolder() {
        if (::mkdtemp(mPath.data()) == nullptr)
            throw std::runtime_error("no folder can be made in /tmp");
        ::setenv("ORBELANTINE_PIPE_DIR", mPath.c_str(), 1);
    }

    ~PipeFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }

    [[nodiscard]] bool isEmpty() const { return std::filesystem::is_empty(mPath); }

    PipeFolder(const PipeFolder&) = delete;
    PipeFolder& operator=(const PipeFolder&) = delete;

  private:
    std::string mPath = "/tmp/orb-soak.XXXXXX";
};

/// A client that came before the server looks again soon.
class ShortPauses final : public IClock {
  public:
    [[nodiscard]] TimePoint now() const override { return IClock::system().now(); }

    void sleepFor(Duration) override { IClock::system().sleepFor(std::chrono::microseconds(100)); }

    [[nodiscard]] boost::shared_ptr<IDelayTimer> makeTimer(boost::asio::io_context& ioService,
                                                           TimePoint expiry) override {
        return IClock::system().makeTimer(ioService, expiry);
    }
};

void require(const error_code& ec, const char* what) {
    if (ec)
        throw std::runtime_error(std::string(what) + " fails: " + std::to_string(ec.value()));
}

// A word is shorter than a message can be.
std::array<char, kWord.size()> readWord(IIPCEndpoint& end) {
    std::array<char, kWord.size()> word{};
    error_code ec;
    if (end.readSome(word.data(), static_cast<int>(word.size()), ec) != kWord.size() && !ec)
        throw std::runtime_error("a word came in pieces");
    require(ec, "readSome");
    return word;
}

void writeWord(IIPCEndpoint& end, const std::array<char, kWord.size()>& word) {
    error_code ec;
    end.write(word.data(), static_cast<int>(word.size()), ec);
    require(ec, "write");
}

void serve(IIPCServer& server) {
    error_code ec;
    const auto client = server.accept(ec);
    require(ec, "accept");
    writeWord(*client, readWord(*client));
    char more = 0;
    // Until the client has closed.
    if (client->readSome(&more, 1, ec) != 0)
        throw std::runtime_error("the client goes on");
}

void talk(IIPCServer& server, IClock& clock) {
    std::future<void> served = std::async(std::launch::async, [&server] { serve(server); });
    WindowsPipeIPCEndpoint client(KVStore{}, PipeSystem{.clock = &clock});
    error_code ec;
    client.connect(kName, ec);
    require(ec, "connect");
    writeWord(client, kWord);
    if (readWord(client) != kWord)
        throw std::runtime_error("another word came back");
    client.close(ec);
    require(ec, "close");
    served.get();
}

} // namespace

PipeTalks PipeTalks::run(std::uint64_t talks) {
    const PipeFolder folder;
    ShortPauses clock;
    WindowsPipeIPCServer server(KVStore{});
    error_code ec;
    server.create(kName, ec);
    require(ec, "create");
    PipeTalks use;
    for (std::uint64_t i = 0; i < talks; ++i) {
        talk(server, clock);
        if (i == talks / 10)
            use.before = ProcessUse::now();
    }
    use.after = ProcessUse::now();
    if (!folder.isEmpty())
        throw std::runtime_error("the pipes have left files behind");
    return use;
}

} // namespace orbelantine::soak
