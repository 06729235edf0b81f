#pragma once

#include <string>

namespace orbelantine {

inline constexpr const char* kInputPipelinePrefix = "input_pipeline:";
inline constexpr const char* kAudioPipelinePrefix = "audio_pipeline:";

/// The profile of an input pipeline kind: 1 is "input_pipeline:hid", 2 is "input_pipeline:generic".
/// Empty for any other.
[[nodiscard]] std::string pipelineProfile(int kind);

} // namespace orbelantine
