#pragma once

#include "binding/callbacks/CallbackFamilies.h"
#include "bluetooth/BluetoothPeer.h"

using sharedPeer = boost::shared_ptr<orbelantine::BluetoothPeer>;
using vectorPeer = std::vector<sharedPeer>;

#define ORB_CALLBACK_FAMILY ORB_CALLBACK_IMPL
#include "binding/callbacks/CallbackTableBluetooth.inc"
#undef ORB_CALLBACK_FAMILY
