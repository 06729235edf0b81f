#pragma once

#include "binding/CallbackFamilies.h"
#include "input/context/IInputContext.h"

#define ORB_CALLBACK_FAMILY ORB_CALLBACK_IMPL
#include "binding/CallbackTableInput.inc"
#undef ORB_CALLBACK_FAMILY
