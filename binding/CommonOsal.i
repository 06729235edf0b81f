// Registered by the host like every other module; it exports nothing else.
%module(directors="1") CommonOsal
%include "binding/overlay/overlay.i"
