%module(directors="1") Common
%include "binding/overlay/overlay.i"

%include "binding/errors.i"
%include "binding/logging.i"
%include "binding/coretypes.i"
%include "binding/containers.i"
%include "binding/kvstore.i"
%include "binding/crash.i"
%include "binding/callbacks/callbacks.i"
%include "binding/callbacks/CallbackTableCommon.inc"
