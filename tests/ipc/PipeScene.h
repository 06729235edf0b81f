#pragma once

#include "core/common/config/KVStore.h"
#include "tests/ipc/FakePipes.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace orbelantine::test {

/// The path by which a peer's executable was asked about.
struct AskedTrust {
    std::vector<std::wstring> paths;
    std::wstring subject = L"Acme";
    std::uint32_t result = 0;
};

/// A trust check that knows one subject for every file.
class SameForAll final : public TrustApi {
  public:
    explicit SameForAll(AskedTrust& asked)
        : mAsked(asked) {}

    bool initialize() override { return true; }

    void uninitialize() override {}

    bool readSigner(const std::wstring& path, std::uint32_t index,
                    FileEvidence& evidence) override {
        mAsked.paths.push_back(path);
        evidence.subjectName = mAsked.subject;
        return index == 0;
    }

    std::uint32_t verifyTrust(const std::wstring&) override { return mAsked.result; }

  private:
    AskedTrust& mAsked;
};

/// Pipes, trust and time that a test scripts.
class PipeScene : public testing::Test {
  protected:
    PipeSystem system() {
        return {.pipes = &pipes, .user = &pipes, .clock = &clock, .trust = [this] {
                    return std::make_unique<SameForAll>(trust);
                }};
    }

    static KVStore signedBy(const std::string& name) {
        KVStore settings;
        settings.setBoolAt("verify_trusted_signature", true);
        settings.setStringAt("signer_name", name);
        return settings;
    }

    static error_code windows(std::uint32_t value) {
        return {static_cast<int>(value), boost::system::system_category()};
    }

    FakePipes pipes;
    AskedTrust trust;
    HandClock clock;
};

} // namespace orbelantine::test
