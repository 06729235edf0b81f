#include "core/common/protect/linux/LinuxProtectionApi.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace orbelantine::test {
namespace {

using Bytes = ProtectionApi::Bytes;

struct LinuxProtection : testing::Test {
    LinuxProtection() { (void)mkdtemp(root.data()); }

    ~LinuxProtection() override { std::filesystem::remove_all(root); }

    std::string root = "/tmp/orbelantine-protect-XXXXXX";
    std::string userFolder = "/user/data";

    LinuxProtectionApi api() const { return {root + userFolder, root + "/machine"}; }

    std::string keyPath() const { return root + "/user/data/protection.key"; }
};

TEST_F(LinuxProtection, RefusesEveryChangedOrCutOrForeignBlobWhole) {
    LinuxProtectionApi own = api();
    const Bytes plain = {'p', 'l', 'a', 'i', 'n'};
    Bytes blob;
    ASSERT_EQ(own.protect(plain, 0, blob), 0U);
    const Bytes before = {'b'};
    Bytes read = before;
    for (std::size_t i = 0; i < blob.size() * 8; ++i) {
        Bytes changed = blob;
        changed[i / 8] ^= static_cast<unsigned char>(1U << (i % 8));
        EXPECT_NE(own.unprotect(changed, read), 0U) << i;
        EXPECT_NE(own.unprotect(Bytes(blob.begin(), blob.begin() + i / 8), read), 0U);
    }
    LinuxProtectionApi another(root + "/another", root + "/machine");
    EXPECT_EQ(another.unprotect(blob, read), 2U);
    Bytes foreign;
    ASSERT_EQ(another.protect(plain, 0, foreign), 0U);
    EXPECT_EQ(own.unprotect(foreign, read), 13U);
    EXPECT_EQ(read, before);
    EXPECT_EQ(own.unprotect(blob, read), 0U);
    EXPECT_EQ(read, plain);
    Bytes empty;
    EXPECT_EQ(own.protect({}, 0, blob), 0U);
    EXPECT_EQ(own.unprotect(blob, empty), 0U);
    EXPECT_TRUE(empty.empty());
}

TEST_F(LinuxProtection, MakesOneKeyThatItsOwnerAloneCanRead) {
    std::array<Bytes, 8> blobs;
    std::array<std::thread, 8> makers;
    for (std::size_t i = 0; i < blobs.size(); ++i)
        makers[i] = std::thread([&, i] { EXPECT_EQ(api().protect({1}, 0, blobs[i]), 0U); });
    for (std::thread& maker : makers)
        maker.join();
    Bytes plain;
    for (const Bytes& blob : blobs)
        EXPECT_EQ(api().unprotect(blob, plain), 0U);

    struct stat status {};

    ASSERT_EQ(stat(keyPath().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
    ASSERT_EQ(stat((root + "/user").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    // Nothing but the key is left.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(root + "/user/data"), {}), 1);

    (void)chmod(keyPath().c_str(), 0640);
    EXPECT_EQ(api().unprotect(blobs[0], plain), 5U);
    (void)chmod(keyPath().c_str(), 0600);
    std::filesystem::resize_file(keyPath(), 31);
    EXPECT_EQ(api().unprotect(blobs[0], plain), 13U);
}

TEST_F(LinuxProtection, IsTheMachinesWhereRootSaysSo) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root says so";
    EXPECT_EQ(api().sessionId(), 1U);
    Bytes blob;
    EXPECT_EQ(api().protect({1, 2}, ProtectionApi::kLocalMachine, blob), 2U);
    EXPECT_FALSE(std::filesystem::exists(root + "/machine"));
    std::filesystem::create_directory(root + "/machine");
    EXPECT_EQ(api().sessionId(), 0U);
    ASSERT_EQ(api().protect({1, 2}, ProtectionApi::kLocalMachine, blob), 0U);

    struct stat status {};

    ASSERT_EQ(stat((root + "/machine/protection.key").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644U);
    userFolder = "/another";
    Bytes plain;
    EXPECT_EQ(api().unprotect(blob, plain), 0U);
    EXPECT_EQ(plain, (Bytes{1, 2}));
    ASSERT_EQ(chown((root + "/machine/protection.key").c_str(), 1, 1), 0);
    EXPECT_EQ(api().unprotect(blob, plain), 5U);
    (void)chmod((root + "/machine").c_str(), 0777);
    EXPECT_EQ(api().sessionId(), 1U);
}

} // namespace
} // namespace orbelantine::test
