#pragma once

#include "audio/AudioState.h"
#include "binding/callbacks/CallbackFamilies.h"

#define ORB_CALLBACK_FAMILY ORB_CALLBACK_IMPL
#include "binding/callbacks/CallbackTableAudio.inc"
#undef ORB_CALLBACK_FAMILY
