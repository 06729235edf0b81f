#pragma once

#include "ipc/trust/TrustApi.h"

#include <string>
#include <vector>

namespace orbelantine::test {

/// A system that knows one file, and tells what it was asked.
struct TrustScript {
    bool present = true;
    /// Of the file's own signature and of those nested in it.
    std::vector<std::wstring> subjects;
    std::uint32_t trustResult = 0;
    std::vector<std::string> asked;
    std::wstring path;
};

class FakeTrustApi final : public TrustApi {
  public:
    explicit FakeTrustApi(TrustScript& script)
        : mScript(script) {}

    bool initialize() override {
        mScript.asked.emplace_back("initialize");
        return mScript.present;
    }

    void uninitialize() override { mScript.asked.emplace_back("uninitialize"); }

    bool readSigner(const std::wstring& path, std::uint32_t index,
                    FileEvidence& evidence) override {
        mScript.path = path;
        mScript.asked.push_back("signer " + std::to_string(index));
        if (index >= mScript.subjects.size())
            return false;
        evidence.subjectName = mScript.subjects[index];
        return true;
    }

    std::uint32_t verifyTrust(const std::wstring&) override {
        mScript.asked.emplace_back("trust");
        return mScript.trustResult;
    }

  private:
    TrustScript& mScript;
};

} // namespace orbelantine::test
