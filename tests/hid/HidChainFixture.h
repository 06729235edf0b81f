#pragma once

#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputSource.h"
#include "avstack/InputContextKey.h"
#include "avstack/InputFormat.h"
#include "core/common/run/Completion.h"
#include "hid/channel/IHIDDeviceClient.h"
#include "hid/link/IBluetoothHIDClient.h"
#include "hid/link/IBluetoothSDPController.h"
#include "tests/support/FactoryOverride.h"
#include "tests/support/Journal.h"

#include <boost/algorithm/hex.hpp>
#include <boost/smart_ptr/make_shared.hpp>

#include <deque>
#include <functional>
#include <future>
#include <iterator>
#include <string>
#include <vector>

namespace orbelantine::test {

/// What the fakes of a chain are told, and tell.
struct ChainScript {
    Journal journal;
    /// Runs within each connect, which returns its result.
    std::function<error_code()> onConnect = [] { return error_code(); };
    error_code unplugResult;
    /// Runs within a source's stop.
    std::function<void()> onSourceStop = [] {};
    /// Results of the controller's operations to come; 0 once they have run out.
    std::deque<std::int32_t> sdpResults;
    boost::shared_ptr<void> context;
};

/// A link, of a HID client or of the device below it.
template <class Interface>
class FakeLink : public Interface {
  public:
    explicit FakeLink(ChainScript& script)
        : mScript(script) {}

    error_code connect(const std::string& address) override {
        mScript.journal.note("connect " + address);
        const error_code ec = mScript.onConnect();
        mConnected = !ec;
        return ec;
    }

    void disconnect() override {
        mConnected = false;
        mScript.journal.note("disconnect");
    }

    void forceDisconnect() override { mScript.journal.note("force"); }

    bool isConnected() override { return mConnected; }

    error_code virtualCableUnplug() override {
        mScript.journal.note("unplug");
        return mScript.unplugResult;
    }

  protected:
    ChainScript& mScript;

  private:
    bool mConnected = false;
};

class FakeHidClient final : public FakeLink<IBluetoothHIDClient> {
  public:
    using FakeLink::FakeLink;

    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        const auto* event = static_cast<IInputMediaBufferMouse::EventData*>(buffer->map(0));
        mScript.journal.note("frame " + std::to_string(event->x));
    }
};

/// Keeps what it is sent.
class FakeHidDevice final : public FakeLink<IHIDDeviceClient> {
  public:
    using Bytes = std::vector<std::uint8_t>;
    using FakeLink::FakeLink;

    void sendReport(const std::uint8_t* data, std::size_t size) override {
        reports.emplace_back(data, data + size);
    }

    std::vector<Bytes> reports;
};

class FakeInputSource final : public IInputSource {
  public:
    explicit FakeInputSource(ChainScript& script)
        : mScript(script) {}

    using IInputSource::start;

    void start() override { mScript.journal.note("source start"); }

    void stop() override {
        mScript.journal.note("source stop");
        mScript.onSourceStop();
    }

    void refresh() override { mScript.journal.note("source refresh"); }

    void registerTarget(const boost::shared_ptr<IMediaElement>& target) override {
        mTarget = target;
    }

    /// As the source's own thread: a mouse move by (x, 0).
    void emit(std::int32_t x) {
        mTarget->onFrame(boost::make_shared<IInputMediaBufferMouse>(
            x, 0, std::uint8_t{IInputMediaBufferMouse::Move}, false));
    }

  private:
    ChainScript& mScript;
    boost::shared_ptr<IMediaElement> mTarget;
};

class FakeSdpController final : public IBluetoothSDPController {
  public:
    explicit FakeSdpController(ChainScript& script)
        : mScript(script) {}

    std::int32_t start() override { return answer("sdp start"); }

    std::int32_t stop() override { return answer("sdp stop"); }

    std::int32_t addHIDDeviceRecord(const std::string& serviceName,
                                    const std::string& serviceDescription,
                                    const std::string& providerName, std::uint16_t subclass,
                                    const std::uint8_t* descriptor, std::uint32_t size) override {
        std::string hex;
        boost::algorithm::hex(descriptor, descriptor + size, std::back_inserter(hex));
        return answer("sdp add " + serviceName + '|' + serviceDescription + '|' + providerName +
                      '|' + std::to_string(subclass) + '|' + hex);
    }

    std::int32_t removeHIDDeviceRecord() override { return answer("sdp remove"); }

  private:
    std::int32_t answer(const std::string& what) {
        mScript.journal.note(what);
        if (mScript.sdpResults.empty())
            return 0;
        const std::int32_t result = mScript.sdpResults.front();
        mScript.sdpResults.pop_front();
        return result;
    }

    ChainScript& mScript;
};

/// The factory gives fakes for the whole chain. Their makers keep the last ones made, which are
/// read once a completion has told that they are there.
struct FakeChain {
    ChainScript script;
    boost::shared_ptr<FakeHidClient> client;
    boost::shared_ptr<FakeInputSource> source;

    FactoryOverride<IBluetoothHIDClient> clients{
        "BluetoothHIDClient", [this](const KVStore&) {
            script.journal.note("client");
            return client = boost::make_shared<FakeHidClient>(script);
        }};
    FactoryOverride<IInputSource, InputFormat> sources{
        "GenericInputSource", [this](const KVStore& store, InputFormat format) {
            script.context = inputContextOf(store);
            script.journal.note("source " + std::to_string(format.mouseType) + ' ' +
                                std::to_string(format.keyboardType) + ' ' +
                                std::to_string(format.touchType) + ' ' +
                                std::to_string(format.typeFlags));
            return source = boost::make_shared<FakeInputSource>(script);
        }};
    FactoryOverride<IBluetoothSDPController> controllers{
        "IBluetoothSDPController::Dummy",
        [this](const KVStore&) { return boost::make_shared<FakeSdpController>(script); }};
};

/// Starts an operation and waits for its completion.
inline error_code await(const std::function<void(Completion)>& operation) {
    std::promise<error_code> promise;
    operation([&](error_code ec) { promise.set_value(ec); });
    return promise.get_future().get();
}

} // namespace orbelantine::test
