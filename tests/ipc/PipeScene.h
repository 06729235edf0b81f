#pragma once

#include "core/common/config/KVStore.h"
#include "tests/ipc/FakePipes.h"
#include "tests/ipc/FakeTrustApi.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace orbelantine::test {

/// Pipes, trust and time that a test scripts.
class PipeScene : public testing::Test {
  protected:
    PipeScene() { trust.subjects = {L"Acme"}; }

    PipeSystem system() {
        return {.pipes = &pipes, .user = &pipes, .clock = &clock, .trust = [this] {
                    return std::make_unique<FakeTrustApi>(trust);
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
    TrustScript trust;
    HandClock clock;
};

} // namespace orbelantine::test
