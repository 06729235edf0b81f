%module(directors="1") Audio
%include "binding/overlay/overlay.i"
%import "binding/Common.i"

%{
#include "binding/callbacks/AudioCallbackFamilies.h"
%}

namespace orbelantine {

enum AudioState { AudioAvailable = 0, NoAudioOut = 1, NoAudioIn = 2, NoAudioInOut = 3 };

}

%include "binding/callbacks/CallbackTableAudio.inc"
