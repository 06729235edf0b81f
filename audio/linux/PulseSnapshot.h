#pragma once

#include "audio/AudioApi.h"

#include <pulse/volume.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace orbelantine {

struct PulseLibrary;

/// What an endpoint is known by as long as it is there, and when it comes back.
struct PulseKey {
    AudioFlow flow;
    std::string name;

    bool operator==(const PulseKey& other) const = default;

    bool operator<(const PulseKey& other) const {
        return std::tie(flow, name) < std::tie(other.flow, other.name);
    }

    [[nodiscard]] std::wstring id() const;
};

struct PulseFacts {
    std::wstring name;
    std::wstring details;
    std::wstring enumeratorName;

    bool operator==(const PulseFacts& other) const = default;
};

struct PulseVolume {
    float level = 0; // from 0 to 1
    bool mute = false;

    bool operator==(const PulseVolume& other) const = default;
};

struct PulseEndpoint {
    PulseKey key;
    std::uint32_t index; // the server's number, another one for each endpoint that comes
    PulseFacts facts;
    std::uint32_t state;
    pa_cvolume channels;
    PulseVolume volume;
};

/// What the server last told: endpoints in its order, and their defaults.
struct PulseSnapshot {
    struct Side {
        std::vector<PulseEndpoint> endpoints;
        std::string defaultName;

        [[nodiscard]] const PulseEndpoint* find(const std::string& name) const;

        /// Null if it is none of the endpoints.
        [[nodiscard]] const PulseEndpoint* defaultEndpoint() const { return find(defaultName); }
    };

    std::array<Side, 2> sides;

    [[nodiscard]] Side& of(AudioFlow flow) { return sides[static_cast<std::size_t>(flow)]; }

    [[nodiscard]] const Side& of(AudioFlow flow) const {
        return sides[static_cast<std::size_t>(flow)];
    }

    [[nodiscard]] const PulseEndpoint* find(const PulseKey& key) const {
        return of(key.flow).find(key.name);
    }
};

using PulseSnapshotPtr = std::shared_ptr<const PulseSnapshot>;

/// `Info` is pa_sink_info or pa_source_info.
template <class Info>
[[nodiscard]] PulseEndpoint pulseEndpoint(const PulseLibrary& library, const Info& info);

/// One notification.
using PulseChange = std::function<void(AudioDeviceCallback& callback)>;

/// What is to be told to one who knows `before`. An endpoint that has other facts, or that has gone
/// and come meanwhile, is another one.
[[nodiscard]] std::vector<PulseChange> changesBetween(const PulseSnapshot& before,
                                                      const PulseSnapshot& after);

} // namespace orbelantine
