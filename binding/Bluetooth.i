%module(directors="1") Bluetooth
%include "binding/overlay/overlay.i"
%import "binding/Common.i"

%{
#include "binding/callbacks/BluetoothCallbackFamilies.h"
#include "bluetooth/IBluetoothService.h"
#include "bluetooth/peers/BluetoothPeerManager.h"
%}

ORB_SHARED(orbelantine::BluetoothPeer)
ORB_SHARED(orbelantine::IBluetoothService)

%include "binding/peers.i"
