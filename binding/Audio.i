%module(directors="1") Audio
%include "binding/overlay/overlay.i"
%import "binding/Common.i"

%{
#include "audio/AudioDevicesState.h"
#include "binding/callbacks/AudioCallbackFamilies.h"
%}

ORB_SHARED(orbelantine::AudioDevicesState)

namespace orbelantine {

enum AudioState { AudioAvailable = 0, NoAudioOut = 1, NoAudioIn = 2, NoAudioInOut = 3 };

}

%include "binding/callbacks/CallbackTableAudio.inc"

// What would wait for itself is the host's exception.
%exception %{
  try { $action }
  catch (const std::exception &e) {
    SWIG_CSharpSetPendingException(SWIG_CSharpInvalidOperationException, e.what());
    return $null;
  }
%}

namespace orbelantine {

class AudioDevicesState {
public:
  AudioDevicesState();
  virtual ~AudioDevicesState();
  void start(boost::function< void (boost::system::error_code) > callback);
  void stop();
  orbelantine::AudioState getAudioState();
  bool isBtHeadsetPluggedIn();
  %immutable;
  boost::signals2::signal< void (bool, bool) > onMute;
  boost::signals2::signal< void (bool) > onBtHeadsetPluggedIn;
  boost::signals2::signal< void (orbelantine::AudioState) > onStateChanged;
  %mutable;
};

}

%exception;
