#pragma once

#include "audio/AudioState.h"
#include "binding/CallbackFamilies.h"

#define ORB_CALLBACK_FAMILY ORB_CALLBACK_IMPL
#include "binding/CallbackTableAudio.inc"
#undef ORB_CALLBACK_FAMILY
