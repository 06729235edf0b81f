#pragma once

#include "binding/callbacks/CallbackFamilies.h"
#include "input/context/IInputContext.h"

#define ORB_CALLBACK_FAMILY ORB_CALLBACK_IMPL
#include "binding/callbacks/CallbackTableInput.inc"
#undef ORB_CALLBACK_FAMILY
