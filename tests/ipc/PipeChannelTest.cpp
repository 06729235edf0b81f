#include "core/common/OSAL.h"
#include "ipc/IIPCEndpoint.h"
#include "ipc/IIPCServer.h"
#include "ipc/pipe/PipeApi.h"
#include "tests/ipc/PipeFolder.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

namespace orbelantine {
namespace {

using Endpoint = boost::shared_ptr<IIPCEndpoint>;

error_code windows(std::uint32_t value) {
    return {static_cast<int>(value), boost::system::system_category()};
}

/// A server and its client, both in this process, over the system's own pipes.
class PipeChannel : public testing::Test {
  protected:
    PipeChannel() {
        error_code ec;
        server->create(mFolder.uniqueName(), ec);
        EXPECT_FALSE(ec);
    }

    [[nodiscard]] std::future<error_code> accepting() {
        return std::async(std::launch::async, [this] {
            error_code ec;
            accepted = server->accept(ec);
            return ec;
        });
    }

    /// Where there is no server yet, connect would pause for a second.
    [[nodiscard]] error_code connect(IIPCEndpoint& endpoint) {
        while (PipeApi::system().waitNamedPipe(mFolder.fullName(), 200) != 0)
            std::this_thread::yield();
        error_code ec;
        endpoint.connect(mFolder.uniqueName(), ec);
        return ec;
    }

    void join() {
        std::future<error_code> taken = accepting();
        ASSERT_FALSE(connect(*client));
        ASSERT_FALSE(taken.get());
        ASSERT_TRUE(accepted);
    }

    [[nodiscard]] static Endpoint newClient() {
        return osalCreate<IIPCEndpoint>(OSALFactory::instance(), "IIPCEndpoint", KVStore{}, "");
    }

    static void write(IIPCEndpoint& end, const std::string& message) {
        error_code ec;
        end.write(message.data(), static_cast<int>(message.size()), ec);
        EXPECT_FALSE(ec) << ec.value();
    }

    [[nodiscard]] static std::string read(IIPCEndpoint& end, std::size_t size) {
        std::string text(size, '\0');
        error_code ec;
        const int count = end.readSome(text.data(), static_cast<int>(size), ec);
        EXPECT_FALSE(ec) << ec.value();
        text.resize(static_cast<std::size_t>(count));
        return text;
    }

    [[nodiscard]] static std::uint32_t readError(IIPCEndpoint& end) {
        char byte = 0;
        error_code ec;
        EXPECT_EQ(end.readSome(&byte, 1, ec), 0);
        return static_cast<std::uint32_t>(ec.value());
    }

    const boost::shared_ptr<IIPCServer> server =
        osalCreate<IIPCServer>(OSALFactory::instance(), "IIPCServer", KVStore{}, "");
    Endpoint client = newClient();
    Endpoint accepted;
    test::PipeFolder mFolder;
};

TEST_F(PipeChannel, MessagesOfAnySizeComeBothWays) {
    join();
    std::string mebibyte(1024 * 1024, '\0');
    std::iota(mebibyte.begin(), mebibyte.end(), '\0');
    for (const std::string& text : {std::string("one"), std::string("another one"), mebibyte}) {
        const auto expectSent = [&](IIPCEndpoint& from, IIPCEndpoint& to) {
            const auto written = std::async(std::launch::async, [&] { write(from, text); });
            std::string got;
            while (got.size() < text.size())
                got += read(to, text.size() + 1);
            EXPECT_TRUE(got == text);
        };
        expectSent(*client, *accepted);
        expectSent(*accepted, *client);
    }
}

TEST_F(PipeChannel, CloseReleasesAReaderAndTheOtherEndIsTold) {
    const auto expectClosedBy = [](IIPCEndpoint& closing, IIPCEndpoint& other) {
        auto reading = std::async(std::launch::async, [&] { return readError(closing); });
        auto told = std::async(std::launch::async, [&] { return readError(other); });
        error_code ec;
        closing.close(ec);
        EXPECT_FALSE(ec);
        EXPECT_EQ(reading.get(), win32::kErrorOperationAborted);
        // Gone at the call, or while it waited.
        const std::uint32_t error = told.get();
        EXPECT_TRUE(error == win32::kErrorBrokenPipe || error == win32::kErrorFileNotFound);
        EXPECT_EQ(readError(other), win32::kErrorBrokenPipe);
        other.close(ec);
        EXPECT_FALSE(ec);
        EXPECT_EQ(readError(other), win32::kErrorOperationAborted);
    };
    join();
    expectClosedBy(*client, *accepted);
    client = newClient();
    join();
    expectClosedBy(*accepted, *client);
}

TEST_F(PipeChannel, ASecondInstanceIsRefusedUntilTheFirstIsClosed) {
    join();
    error_code ec;
    EXPECT_FALSE(server->accept(ec));
    EXPECT_EQ(ec, windows(win32::kErrorPipeBusy));

    accepted->close(ec);
    std::future<error_code> taken = accepting();
    const Endpoint next = newClient();
    EXPECT_FALSE(connect(*next));
    EXPECT_FALSE(taken.get());
    write(*next, "next");
    EXPECT_EQ(read(*accepted, 100), "next");
}

TEST_F(PipeChannel, OfManyClientsOneIsServedAtATimeAndNoneIsForgotten) {
    std::atomic<bool> serving = true;
    std::thread service([&] {
        while (serving) {
            error_code ec;
            const Endpoint end = server->accept(ec);
            char byte = 0;
            if (!end || end->readSome(&byte, 1, ec) != 1)
                continue;
            end->write(&byte, 1, ec);
            // Until the client has gone: what it has not read would be lost with this end.
            (void)end->readSome(&byte, 1, ec);
        }
    });
    std::vector<std::thread> clients;
    for (int i = 0; i < 8; ++i)
        clients.emplace_back([this] {
            // Another may take the pipe between the wait and the opening.
            for (char byte = '!', back = 0; back != byte;) {
                const Endpoint end = newClient();
                if (connect(*end))
                    continue;
                error_code ec;
                end->write(&byte, 1, ec);
                (void)end->readSome(&back, 1, ec);
            }
        });
    for (std::thread& each : clients)
        each.join();
    serving = false;
    server->close();
    service.join();
}

TEST_F(PipeChannel, CloseEndsAWaitingAccept) {
    std::future<error_code> taken = accepting();
    server->close();
    EXPECT_TRUE(taken.get());
    EXPECT_FALSE(accepted);
}

} // namespace
} // namespace orbelantine
