%module(directors="1") Input
%include "binding/overlay/overlay.i"
%import "binding/Common.i"
%import "binding/AVStackBase.i"
%import "binding/Bluetooth.i"

%{
#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputMediaBufferTouch.h"
#include "avstack/IInputSource.h"
#include "avstack/IInputTarget.h"
#include "avstack/InputFormat.h"
#include "binding/callbacks/InputCallbackFamilies.h"
#include "core/common/config/KVStore.h"
#include "hid/channel/HIDDeviceClient.h"
#include "hid/reports/HIDEventsPacker.h"
#include "hid/reports/HIDReportProvider.h"
#include "hid/link/HidInputClient.h"
#include "hid/link/IBluetoothSDPController.h"
#include "input/sources/IRemoteMouseInfoProvider.h"
#include "input/context/IWindowState.h"
#include "input/context/InputContextComposite.h"
#include "input/window/WindowsHwndInputContext.h"
%}

ORB_SHARED(orbelantine::IInputMediaBufferMouse)
ORB_SHARED(orbelantine::IInputMediaBufferKeyboard)
ORB_SHARED(orbelantine::IInputMediaBufferTouch)
ORB_SHARED(orbelantine::IInputContext)
ORB_SHARED(orbelantine::InputContextComposite)
ORB_SHARED(orbelantine::WindowsHwndInputContext)
ORB_SHARED(orbelantine::IWindowState)
ORB_SHARED(orbelantine::IRemoteMouseInfoProvider)
ORB_SHARED(orbelantine::IBluetoothSDPController)
ORB_SHARED(orbelantine::HidInputClient)
ORB_SHARED(orbelantine::IInputSource)
ORB_SHARED(orbelantine::IInputTarget)
ORB_SHARED(orbelantine::IHIDDeviceClient)
ORB_SHARED(orbelantine::HIDDeviceClient)
ORB_SHARED(orbelantine::HIDEventsPacker)
ORB_SHARED(orbelantine::IHIDReportProvider)
ORB_SHARED(orbelantine::HIDReportProvider)

%include "binding/inputbuffers.i"
%include "binding/hid.i"
%include "binding/inputcontexts.i"
%include "binding/windowcontext.i"
%include "binding/hidclient.i"

// Its keys leave as a list that hosts know.
%typemap(cstype) std::vector< orbelantine::InputFormat::DeviceType > * "IntVector"
%typemap(out) std::vector< orbelantine::InputFormat::DeviceType > *
%{ $result = new std::vector< int >($1->begin(), $1->end()); delete $1; %}
%typemap(csout, excode=SWIGEXCODE) std::vector< orbelantine::InputFormat::DeviceType > * {
    IntVector keys = new IntVector($imcall, $owner);$excode
    return keys;
  }
%template(HIDDescriptorsMap) std::map< orbelantine::InputFormat::DeviceType, boost::shared_ptr< orbelantine::IMediaBuffer > >;
