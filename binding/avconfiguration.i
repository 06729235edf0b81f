// The names by which pipelines are configured and chosen.

%{
#include "avstack/AVConfiguration.h"
#include "avstack/MediaPipelineImplList.h"
%}

namespace orbelantine {

%immutable;
extern const char * const AUDIO_PIPELINE_PREFIX;
extern const char * const INPUT_PIPELINE_PREFIX;
%mutable;

enum class AudioPipelineType : int { LowLatency = 1, MicInject = 2, SyncToVideo = 3, Karaoke = 4 };
enum class InputPipelineType : int { Hid = 1, Generic = 2 };

// A text that is replaced stays valid for whoever holds it.
%typemap(globalin) const char * %{ orbelantine::AVConfiguration::replaceText($1, $input); %}

class AVConfiguration {
public:
  AVConfiguration(orbelantine::AudioPipelineType audioType = orbelantine::AudioPipelineType(), orbelantine::InputPipelineType inputType = orbelantine::InputPipelineType());
  virtual ~AVConfiguration();
  static std::string PipelineTypeToString(orbelantine::InputPipelineType type);
  static std::string PipelineTypeToString(orbelantine::AudioPipelineType type);
  orbelantine::AudioPipelineType audioPipelineType;
  orbelantine::InputPipelineType inputPipelineType;
%define ORB_AV_KEY(NAME, TEXT)
  static const char *NAME;
%enddef
%include "avstack/AVConfigurationKeys.inc"
};

%typemap(globalin) const char *;

class MediaPipelineImplList {
public:
  MediaPipelineImplList();
  ~MediaPipelineImplList();
};

}
