%module(directors="1") Audio
%include "binding/overlay/overlay.i"
