#pragma once

#include "bluetooth/IBluetoothImpl.h"

#include <boost/signals2/signal.hpp>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {

/// A backend that a script stands for; outlives the backends that it makes. Nothing completes by
/// itself, and what the script completes or tells comes on the script's thread. Any thread may
/// call; the public fields are for when none does.
class FakeRadio {
  public:
    error_code startError;
    error_code discoverableError;
    bool on = true;
    bool discoverable = false;

    /// The backend for a machine; the last one made is what the script speaks for.
    [[nodiscard]] std::unique_ptr<IBluetoothImpl> make() {
        auto impl = std::make_unique<Impl>(*this);
        const std::lock_guard lock(mMutex);
        mImpl = impl.get();
        return impl;
    }

    /// What was asked since the last call, such as "pair 5".
    [[nodiscard]] std::vector<std::string> calls() {
        const std::lock_guard lock(mMutex);
        return std::exchange(mCalls, {});
    }

    /// Whether such an operation is open.
    [[nodiscard]] bool isOpen(const std::string& operation) {
        const std::lock_guard lock(mMutex);
        return !mOpen[mImpl][operation].empty();
    }

    /// Ends the oldest such operation that is open; waits for one, not for ever.
    void simulateEnd(const std::string& operation, error_code ec = {}) {
        std::unique_lock lock(mMutex);
        if (!mChanged.wait_for(lock, std::chrono::seconds(20),
                               [&] { return !mOpen[mImpl][operation].empty(); }))
            throw std::runtime_error("no " + operation + " is open");
        auto& open = mOpen[mImpl][operation];
        const Completion completion = std::move(open.front());
        open.pop_front();
        const std::lock_guard telling(mTelling);
        lock.unlock();
        complete(completion, ec);
    }

    void simulatePeer(std::uint64_t address, const std::wstring& name = L"",
                      unsigned long deviceClass = 0) {
        mImpl->onPeerFound(CMacAddress(address), name, deviceClass);
    }

    void simulateRequest(std::uint64_t address, const std::wstring& name = L"",
                         unsigned long deviceClass = 0) {
        mImpl->onAuthenticationRequest(CMacAddress(address), name, deviceClass);
    }

    [[nodiscard]] bool hasListeners() const { return !mImpl->onAuthenticationRequest.empty(); }

  private:
    class Impl final : public IBluetoothImpl {
      public:
        explicit Impl(FakeRadio& radio)
            : mRadio(radio) {}

        ~Impl() override { mRadio.end(*this); }

        error_code start(bool registerIncoming) override {
            mRadio.add(registerIncoming ? "start registered" : "start");
            return mRadio.startError;
        }

        void stop() override { mRadio.add("stop"); }

        std::wstring getLocalName() override { return L"computer"; }

        CMacAddress getLocalAddress() override { return CMacAddress(std::uint64_t{99}); }

        error_code verifyHidDriverVersion() override { return {4, error_code().category()}; }

        error_code verifyHandsfreeDriverVersion() override { return {5, error_code().category()}; }

        std::int32_t getHidDriverVersion() override { return 6; }

        error_code enableDiscoverable() override { return setDiscoverable(true); }

        error_code disableDiscoverable() override { return setDiscoverable(false); }

        bool isDiscoverable() override { return mRadio.discoverable; }

        bool isBluetoothOn() override { return mRadio.on; }

        void rescanCachedPeers(Completion completion) override {
            mRadio.open(*this, "rescan", "", std::move(completion));
        }

        void discoverOnce(Completion completion, std::uint16_t multiplier) override {
            mRadio.open(*this, "discover", " " + std::to_string(multiplier), std::move(completion));
        }

        void pair(const CMacAddress& address, Completion completion) override {
            mRadio.open(*this, "pair", text(address), std::move(completion));
        }

        void authRemote(const CMacAddress& address, Completion completion) override {
            mRadio.open(*this, "authRemote", text(address), std::move(completion));
        }

        void unpair(const CMacAddress& address, Completion completion) override {
            mRadio.open(*this, "unpair", text(address), std::move(completion));
        }

      private:
        [[nodiscard]] static std::string text(const CMacAddress& address) {
            return " " + std::to_string(address.getUllAddress());
        }

        [[nodiscard]] error_code setDiscoverable(bool wanted) {
            mRadio.add(wanted ? "enableDiscoverable" : "disableDiscoverable");
            mRadio.discoverable = wanted;
            return mRadio.discoverableError;
        }

        FakeRadio& mRadio;
    };

    void add(const std::string& call) {
        const std::lock_guard lock(mMutex);
        mCalls.push_back(call);
    }

    /// What is open goes with its backend, which waits for a completion that is on its way.
    void end(const Impl& impl) {
        {
            const std::lock_guard lock(mMutex);
            mOpen.erase(&impl);
        }
        // The last thing that is done: the radio may go when it has been told of.
        { const std::lock_guard told(mTelling); }
        add("destroyed");
    }

    void open(const Impl& impl, const std::string& operation, const std::string& detail,
              Completion completion) {
        const std::lock_guard lock(mMutex);
        mCalls.push_back(operation + detail);
        mOpen[&impl][operation].push_back(std::move(completion));
        mChanged.notify_all();
    }

    std::mutex mMutex;
    // Held while a completion runs; it may end the backend itself.
    std::recursive_mutex mTelling;
    std::condition_variable mChanged;
    Impl* mImpl = nullptr;
    std::vector<std::string> mCalls;
    std::map<const Impl*, std::map<std::string, std::deque<Completion>>> mOpen;
};

} // namespace orbelantine::test
