// The families of up to one argument.
#include "binding/CallbackSignals.h"

#define ORB_INSTANTIATE_0(...) ORB_INSTANTIATE(__VA_ARGS__)
#define ORB_INSTANTIATE_1(...) ORB_INSTANTIATE(__VA_ARGS__)
#define ORB_INSTANTIATE_2(...)
#define ORB_INSTANTIATE_3(...)
#define ORB_INSTANTIATE_4(...)
#define ORB_INSTANTIATE_5(...)
#define ORB_CALLBACK_FAMILY(NAME, RESULT, COUNT, TYPES, ...) ORB_INSTANTIATE_##COUNT(RESULT TYPES)

namespace orbelantine::binding {

#include "binding/CallbackTableAudio.inc"
#include "binding/CallbackTableBluetooth.inc"
#include "binding/CallbackTableCommon.inc"
#include "binding/CallbackTableInput.inc"

} // namespace orbelantine::binding
