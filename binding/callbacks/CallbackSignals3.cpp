// The families of three arguments and more.
#include "binding/callbacks/CallbackSignals.h"

#define ORB_INSTANTIATE_0(...)
#define ORB_INSTANTIATE_1(...)
#define ORB_INSTANTIATE_2(...)
#define ORB_INSTANTIATE_3(...) ORB_INSTANTIATE(__VA_ARGS__)
#define ORB_INSTANTIATE_4(...) ORB_INSTANTIATE(__VA_ARGS__)
#define ORB_INSTANTIATE_5(...) ORB_INSTANTIATE(__VA_ARGS__)
#define ORB_CALLBACK_FAMILY(NAME, RESULT, COUNT, TYPES, ...) ORB_INSTANTIATE_##COUNT(RESULT TYPES)

namespace orbelantine::binding {

#include "binding/callbacks/CallbackTableAudio.inc"
#include "binding/callbacks/CallbackTableBluetooth.inc"
#include "binding/callbacks/CallbackTableCommon.inc"
#include "binding/callbacks/CallbackTableInput.inc"

} // namespace orbelantine::binding
