#include "audio/linux/PulseDevices.h"

#include "audio/linux/PulseControl.h"

namespace orbelantine {

namespace {

constexpr std::uint32_t kAudioDeviceNotPresent = 4;

class PulseProperties : public AudioPropertyStore {
  public:
    explicit PulseProperties(PulseFacts facts)
        : mFacts(std::move(facts)) {}

    AudioResult getValue(AudioProperty property, std::wstring& value) override {
        switch (property) {
        case AudioProperty::Name:
            value = mFacts.name;
            return hresult::kOk;
        case AudioProperty::Details:
            value = mFacts.details;
            return hresult::kOk;
        case AudioProperty::EnumeratorName:
            value = mFacts.enumeratorName;
            return hresult::kOk;
        }
        return hresult::kInvalidArgument;
    }

  private:
    const PulseFacts mFacts;
};

/// Keeps its id and facts when the endpoint has gone.
class PulseDevice : public AudioDevice {
  public:
    PulseDevice(boost::shared_ptr<PulseConnection> connection, const PulseEndpoint& endpoint)
        : mConnection(std::move(connection))
        , mKey(endpoint.key)
        , mFacts(endpoint.facts) {}

    AudioResult activate(std::unique_ptr<AudioControl>& control) override {
        if (mConnection->state().snapshot()->find(mKey) == nullptr)
            return hresult::kDeviceInvalidated;
        control = std::make_unique<PulseControl>(mConnection, mKey);
        return hresult::kOk;
    }

    AudioResult openPropertyStore(std::unique_ptr<AudioPropertyStore>& properties) override {
        properties = std::make_unique<PulseProperties>(mFacts);
        return hresult::kOk;
    }

    AudioResult getId(std::wstring& id) override {
        id = mKey.id();
        return hresult::kOk;
    }

    AudioResult getState(std::uint32_t& state) override {
        const PulseSnapshotPtr snapshot = mConnection->state().snapshot();
        const PulseEndpoint* const endpoint = snapshot->find(mKey);
        state = endpoint == nullptr ? kAudioDeviceNotPresent : endpoint->state;
        return hresult::kOk;
    }

  private:
    const boost::shared_ptr<PulseConnection> mConnection;
    const PulseKey mKey;
    const PulseFacts mFacts;
};

class PulseCollection : public AudioDeviceCollection {
  public:
    PulseCollection(boost::shared_ptr<PulseConnection> connection,
                    std::vector<PulseEndpoint> endpoints)
        : mConnection(std::move(connection))
        , mEndpoints(std::move(endpoints)) {}

    AudioResult getCount(std::uint32_t& count) override {
        count = static_cast<std::uint32_t>(mEndpoints.size());
        return hresult::kOk;
    }

    AudioResult item(std::uint32_t index, std::unique_ptr<AudioDevice>& device) override {
        if (index >= mEndpoints.size())
            return hresult::kInvalidArgument;
        device = std::make_unique<PulseDevice>(mConnection, mEndpoints[index]);
        return hresult::kOk;
    }

  private:
    const boost::shared_ptr<PulseConnection> mConnection;
    const std::vector<PulseEndpoint> mEndpoints;
};

} // namespace

PulseEnumerator::PulseEnumerator(boost::shared_ptr<PulseConnection> connection)
    : mConnection(std::move(connection))
    , mSeen(mConnection->state().snapshot())
    , mRegistrations(mConnection->state()) {}

AudioResult PulseEnumerator::enumAudioEndpoints(AudioFlow flow, std::uint32_t stateMask,
                                                std::unique_ptr<AudioDeviceCollection>& devices) {
    std::vector<PulseEndpoint> endpoints = mConnection->state().snapshot()->of(flow).endpoints;
    std::erase_if(endpoints, [&](const auto& each) { return (each.state & stateMask) == 0; });
    devices = std::make_unique<PulseCollection>(mConnection, std::move(endpoints));
    return hresult::kOk;
}

AudioResult PulseEnumerator::getDefaultAudioEndpoint(AudioFlow flow, AudioRole /*role*/,
                                                     std::unique_ptr<AudioDevice>& device) {
    const PulseSnapshotPtr snapshot = mConnection->state().snapshot();
    const PulseEndpoint* const endpoint = snapshot->of(flow).defaultEndpoint();
    if (endpoint == nullptr)
        return hresult::kNotFound;
    device = std::make_unique<PulseDevice>(mConnection, *endpoint);
    return hresult::kOk;
}

AudioResult PulseEnumerator::registerEndpointNotificationCallback(
    const boost::shared_ptr<AudioDeviceCallback>& callback) {
    if (!callback)
        return hresult::kInvalidArgument;
    mRegistrations.add(mConnection->state().addListener(callback, mSeen));
    mConnection->tellDevicesSoon();
    return hresult::kOk;
}

AudioResult PulseEnumerator::unregisterEndpointNotificationCallback(
    const boost::shared_ptr<AudioDeviceCallback>& callback) {
    return mRegistrations.remove(callback);
}

} // namespace orbelantine
