#include "core/common/log/LogPaths.h"
#include "core/common/protect/ProtectedStreams.h"
#include "tests/support/CapturedLog.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <random>
#include <string>
#include <thread>

namespace orbelantine::test {
namespace {

/// Protects by a byte that tells the flags and by reversing.
class FakeProtectionApi final : public ProtectionApi {
  public:
    Error protect(const Bytes& plain, std::uint32_t flags, Bytes& blob) override {
        blob.assign(plain.rbegin(), plain.rend());
        blob.push_back(static_cast<unsigned char>(flags));
        return error;
    }

    Error unprotect(const Bytes& blob, Bytes& plain) override {
        plain.assign(blob.rbegin() + 1, blob.rend());
        return error;
    }

    std::uint32_t sessionId() override { return 1; }

    void copy(unsigned char* to, const char* from, std::size_t size) override {
        std::memcpy(to, from, size);
    }

    Error error = 0;
};

/// A file of its own, in a folder whose name isn't ASCII.
struct ProtectedStream : testing::Test {
    ProtectedStream() { std::filesystem::create_directories(folder); }

    ~ProtectedStream() override { std::filesystem::remove_all(folder); }

    std::string content() const {
        std::ifstream file(toPath(path), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void put(const std::string& bytes) const {
        std::ofstream(toPath(path), std::ios::binary) << bytes;
    }

    static std::string rest(cifstream& stream) {
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        (u8"gesch\u00fctzt-" +
         std::filesystem::path(std::to_string(std::random_device{}())).u8string());
    const std::wstring path = toWide(folder / "file");
    FakeProtectionApi api;
};

TEST_F(ProtectedStream, RewritesAllOfItWithEachWriteForTheUserOrTheMachine) {
    CapturedLog log(kLogTrace, "orbelantine::");
    for (const std::uint32_t session : {0U, 1U, 7U}) {
        cofstream out(path, api, session);
        out.write("abc", 3).write("zero", 0).write("de", 2);
        out.close();
        EXPECT_EQ(content(), std::string("edcba") + (session == 0 ? '\4' : '\0'));
        EXPECT_EQ(log.told(),
                  (Texts{"debug cofstream::write() Wrote 4 encrypted bytes for 3 decrypted (3 new)",
                         "debug cofstream::write() Wrote 6 encrypted bytes for 5 decrypted (2 "
                         "new)"}));
    }
    cifstream in(path, std::ios::in, api);
    EXPECT_EQ(log.told(),
              Texts{"debug cifstream::decrypt() Read 5 decrypted bytes for 6 encrypted"});
    EXPECT_EQ(rest(in), "abcde");
}

TEST_F(ProtectedStream, FailureIsAStateAndALineAndNothingPlain) {
    CapturedLog log(kLogTrace, "orbelantine::");
    api.error = 13;
    cofstream out(path, api, 1);
    out.write("abc", 3);
    EXPECT_TRUE(out.bad());
    EXPECT_EQ(log.told(), Texts{"error cofstream::write() Failed to encrypt 3 bytes. Error = 13"});
    // A bad stream takes nothing more; what it would have written is told all the same.
    api.error = 0;
    out.write("d", 1);
    out.close();
    EXPECT_EQ(content(), "");
    EXPECT_EQ(log.told(),
              Texts{"debug cofstream::write() Wrote 5 encrypted bytes for 4 decrypted (1 new)"});

    EXPECT_TRUE(cifstream(path, std::ios::in, api).good());
    put("secret");
    api.error = 13;
    cifstream in(path, std::ios::in, api);
    EXPECT_TRUE(in.bad());
    EXPECT_EQ(log.told(),
              Texts{"error cifstream::decrypt() Failed to decrypt 6 bytes. Error = 13"});
    std::string word;
    EXPECT_FALSE(in >> word);
    EXPECT_EQ(word, "");

    api.error = 0;
    std::filesystem::resize_file(toPath(path), 3'000'000'000);
    EXPECT_TRUE(cifstream(path, std::ios::in, api).bad());
    EXPECT_EQ(log.told(),
              Texts{"error cifstream::decrypt() Failed to decrypt 2147483647 bytes. Error = 13"});

    EXPECT_TRUE(cifstream(path + L"/none", std::ios::in, api).fail());
    EXPECT_TRUE(cofstream(path + L"/none", api, 1).fail());
}

TEST_F(ProtectedStream, KeepsWhatThreadsWriteAtOnceInWholePieces) {
    constexpr std::size_t kPiece = 9;
    constexpr std::size_t kEach = 200;
    cofstream out(path, api, 1);
    std::array<std::thread, 4> writers;
    for (std::size_t i = 0; i < writers.size(); ++i)
        writers[i] = std::thread([&out, piece = std::string(kPiece, static_cast<char>('a' + i))] {
            for (std::size_t n = 0; n < kEach; ++n)
                out.write(piece.data(), kPiece);
        });
    for (std::thread& writer : writers)
        writer.join();
    out.close();

    cifstream in(path, std::ios::in, api);
    const std::string read = rest(in);
    ASSERT_EQ(read.size(), writers.size() * kEach * kPiece);
    std::array<std::size_t, 4> pieces{};
    for (std::size_t i = 0; i < read.size(); i += kPiece) {
        ASSERT_EQ(read.substr(i, kPiece), std::string(kPiece, read[i])) << i;
        ++pieces.at(static_cast<std::size_t>(read[i] - 'a'));
    }
    EXPECT_EQ(pieces, (std::array<std::size_t, 4>{kEach, kEach, kEach, kEach}));
}

TEST_F(ProtectedStream, OfTheSystemComesBackAsItWasWritten) {
    std::string expected;
    {
        cofstream out(path);
        for (int i = 0; i < 50; ++i) {
            const std::string piece(static_cast<std::size_t>(i * 7), static_cast<char>(i));
            out.write(piece.data(), static_cast<std::streamsize>(piece.size()));
            expected += piece;
        }
        errno = 0;
        out.write(nullptr, 3);
        EXPECT_EQ(errno, 22);
        expected += std::string(3, '\0');
        ASSERT_TRUE(out.good());
    }
    EXPECT_EQ(content().find(std::string(100, '\x20')), std::string::npos);
    {
        cifstream in(path);
        EXPECT_EQ(rest(in), expected);
    }
    for (const std::string& garbage : {std::string(500, 'x'), std::string("ORBP")}) {
        put(garbage);
        EXPECT_TRUE(cifstream(path).bad()) << garbage.size();
    }
}

} // namespace
} // namespace orbelantine::test
