#include "avstack/AVConfiguration.h"

#include <map>
#include <mutex>
#include <set>

namespace orbelantine {

namespace {

template <class Type>
std::string nameOf(const std::map<Type, std::string>& names, Type type) {
    const auto name = names.find(type);
    return name == names.end() ? std::string() : name->second;
}

std::string inputName(InputPipelineType type) {
    return pipelineProfile(static_cast<int>(type));
}

std::string audioName(const char* name) {
    return AUDIO_PIPELINE_PREFIX + std::string(name);
}

} // namespace

// clang-format off
#define ORB_AV_KEY(NAME, TEXT) const char* AVConfiguration::NAME = TEXT;
#include "avstack/AVConfigurationKeys.inc"
#undef ORB_AV_KEY

// clang-format on

AVConfiguration::AVConfiguration(AudioPipelineType audioType, InputPipelineType inputType)
    : audioPipelineType(audioType)
    , inputPipelineType(inputType) {}

std::string AVConfiguration::PipelineTypeToString(InputPipelineType type) {
    using enum InputPipelineType;
    static const std::map<InputPipelineType, std::string> names = {
        {Hid, inputName(Hid)},
        {Generic, inputName(Generic)},
    };
    return nameOf(names, type);
}

std::string AVConfiguration::PipelineTypeToString(AudioPipelineType type) {
    using enum AudioPipelineType;
    static const std::map<AudioPipelineType, std::string> names = {
        {LowLatency, audioName("low_latency")},
        {MicInject, audioName("mic_inject")},
        {SyncToVideo, audioName("sync_to_video")},
        {Karaoke, audioName("karaoke")},
    };
    return nameOf(names, type);
}

void AVConfiguration::replaceText(const char*& text, const char* value) {
    // Every value that was ever set, once; read until the process ends.
    static std::mutex mutex;
    static auto& values = *new std::set<std::string>;
    const std::lock_guard lock(mutex);
    text = values.emplace(value ? value : "").first->c_str();
}

} // namespace orbelantine
