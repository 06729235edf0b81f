#include "audio/linux/PulseSnapshot.h"

#include "audio/AudioDeviceCallback.h"
#include "audio/linux/PulseLibrary.h"

#include <boost/nowide/convert.hpp>

#include <algorithm>
#include <type_traits>

namespace orbelantine {

namespace {

using Changes = std::vector<PulseChange>;

constexpr AudioFlow kBothFlows[] = {AudioFlow::Render, AudioFlow::Capture};
constexpr AudioRole kAllRoles[] = {AudioRole::Console, AudioRole::Multimedia,
                                   AudioRole::Communications};

std::wstring widenPulseText(const char* text) {
    return text == nullptr ? std::wstring() : boost::nowide::widen(text);
}

/// The bus as Windows names its enumerators; its software devices hang at the root.
std::wstring enumeratorNameOf(const char* bus) {
    if (bus == nullptr)
        return L"ROOT";
    std::string name = bus;
    if (name == "bluetooth")
        return L"BTHENUM";
    for (char& letter : name) {
        if (letter >= 'a' && letter <= 'z')
            letter = static_cast<char>(letter - 'a' + 'A');
    }
    return boost::nowide::widen(name);
}

const char* pulseDetails(const PulseLibrary& library, const pa_proplist* properties,
                         const char* otherwise) {
    for (const char* property :
         {PA_PROP_DEVICE_PRODUCT_NAME, "alsa.card_name", PA_PROP_DEVICE_STRING}) {
        if (const char* const text = library.proplist_gets(properties, property))
            return text;
    }
    return otherwise;
}

bool isSameEndpoint(const PulseEndpoint& one, const PulseEndpoint& other) {
    return one.index == other.index && one.key == other.key && one.facts == other.facts;
}

const PulseEndpoint* counterpartOf(const PulseEndpoint& endpoint, const PulseSnapshot& in) {
    const PulseEndpoint* const found = in.find(endpoint.key);
    return found != nullptr && isSameEndpoint(*found, endpoint) ? found : nullptr;
}

void appendRemoved(const PulseSnapshot& before, const PulseSnapshot& after, AudioFlow flow,
                   Changes& changes) {
    for (const PulseEndpoint& endpoint : before.of(flow).endpoints) {
        if (counterpartOf(endpoint, after) == nullptr)
            changes.push_back([id = endpoint.key.id()](AudioDeviceCallback& callback) {
                callback.onDeviceRemoved(id.c_str());
            });
    }
}

void appendAddedOrOther(const PulseSnapshot& before, const PulseSnapshot& after, AudioFlow flow,
                        Changes& changes) {
    for (const PulseEndpoint& endpoint : after.of(flow).endpoints) {
        const PulseEndpoint* const old = counterpartOf(endpoint, before);
        if (old == nullptr)
            changes.push_back([id = endpoint.key.id()](AudioDeviceCallback& callback) {
                callback.onDeviceAdded(id.c_str());
            });
        else if (old->state != endpoint.state)
            changes.push_back(
                [id = endpoint.key.id(), state = endpoint.state](AudioDeviceCallback& callback) {
                    callback.onDeviceStateChanged(id.c_str(), state);
                });
    }
}

std::wstring defaultIdOf(const PulseSnapshot& snapshot, AudioFlow flow) {
    const PulseEndpoint* const endpoint = snapshot.of(flow).defaultEndpoint();
    return endpoint == nullptr ? std::wstring() : endpoint->key.id();
}

void appendDefault(const PulseSnapshot& before, const PulseSnapshot& after, AudioFlow flow,
                   Changes& changes) {
    const std::wstring id = defaultIdOf(after, flow);
    if (id == defaultIdOf(before, flow))
        return;
    for (const AudioRole role : kAllRoles)
        changes.push_back([flow, role, id](AudioDeviceCallback& callback) {
            callback.onDefaultDeviceChanged(flow, role, id.empty() ? nullptr : id.c_str());
        });
}

} // namespace

std::wstring PulseKey::id() const {
    return boost::nowide::widen(name);
}

const PulseEndpoint* PulseSnapshot::Side::find(const std::string& name) const {
    const auto found = std::find_if(endpoints.begin(), endpoints.end(),
                                    [&](const auto& each) { return each.key.name == name; });
    return found == endpoints.end() ? nullptr : &*found;
}

template <class Info>
PulseEndpoint pulseEndpoint(const PulseLibrary& library, const Info& info) {
    const bool isSink = std::is_same_v<Info, pa_sink_info>;
    const bool isUnplugged =
        info.active_port != nullptr && info.active_port->available == PA_PORT_AVAILABLE_NO;
    const float level =
        static_cast<float>(library.cvolume_max(&info.volume)) / static_cast<float>(PA_VOLUME_NORM);
    return {
        .key = {isSink ? AudioFlow::Render : AudioFlow::Capture, info.name},
        .index = info.index,
        .facts = {widenPulseText(info.description),
                  widenPulseText(pulseDetails(library, info.proplist, info.name)),
                  enumeratorNameOf(library.proplist_gets(info.proplist, PA_PROP_DEVICE_BUS))},
        .state = isUnplugged ? kAudioDeviceUnplugged : kAudioDeviceActive,
        .channels = info.volume,
        .volume = {std::min(level, 1.0F), info.mute != 0},
    };
}

template PulseEndpoint pulseEndpoint(const PulseLibrary& library, const pa_sink_info& info);
template PulseEndpoint pulseEndpoint(const PulseLibrary& library, const pa_source_info& info);

std::vector<PulseChange> changesBetween(const PulseSnapshot& before, const PulseSnapshot& after) {
    Changes changes;
    for (const auto append : {&appendRemoved, &appendAddedOrOther, &appendDefault}) {
        for (const AudioFlow flow : kBothFlows)
            append(before, after, flow, changes);
    }
    return changes;
}

} // namespace orbelantine
