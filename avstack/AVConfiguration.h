#pragma once

#include "core/common/config/PipelineNames.h"

#include <cstdint>
#include <string>

namespace orbelantine {

inline constexpr const char* AUDIO_PIPELINE_PREFIX = kAudioPipelinePrefix;
inline constexpr const char* INPUT_PIPELINE_PREFIX = kInputPipelinePrefix;

enum class AudioPipelineType : std::int32_t {
    LowLatency = 1,
    MicInject = 2,
    SyncToVideo = 3,
    Karaoke = 4,
};

enum class InputPipelineType : std::int32_t {
    Hid = 1,
    Generic = 2,
};

/// The chosen pipelines, and the names of the entries by which pipelines are configured in a
/// KVStore. A type of 0 is none chosen.
class AVConfiguration {
  public:
    explicit AVConfiguration(AudioPipelineType audioType = {}, InputPipelineType inputType = {});
    AVConfiguration(const AVConfiguration&) = default;
    AVConfiguration& operator=(const AVConfiguration&) = default;
    virtual ~AVConfiguration() = default;

    /// The pipeline's profile name, such as "input_pipeline:hid"; empty for a number without one.
    /// Any thread may call.
    [[nodiscard]] static std::string PipelineTypeToString(InputPipelineType type);
    [[nodiscard]] static std::string PipelineTypeToString(AudioPipelineType type);

    /// Gives one of the texts below another value; null counts as the empty text. What was read
    /// before stays valid until the process ends. Not for use while another thread reads or
    /// replaces the same text.
    static void replaceText(const char*& text, const char* value);

    AudioPipelineType audioPipelineType;
    InputPipelineType inputPipelineType;

    // clang-format off
#define ORB_AV_KEY(NAME, TEXT) static const char* NAME;
#include "avstack/AVConfigurationKeys.inc"
#undef ORB_AV_KEY
    // clang-format on
};

} // namespace orbelantine
