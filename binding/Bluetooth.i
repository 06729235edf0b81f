%module(directors="1") Bluetooth
%include "binding/overlay/overlay.i"
