// What every module starts from: SWIG's own rules with the changes that the exports call for.

// 844: a text result is taken before a pending exception is raised.
#pragma SWIG nowarn=844

%include "binding/overlay/registration.i"
%include <stdint.i>
%include <typemaps.i>
%include "binding/overlay/text.i"
%include "binding/overlay/values.i"
%include "binding/overlay/proxies.i"
%include "binding/overlay/holders.i"

// Native enumerations are constants for the host, without an export each.
%csconst(1);

// The proxies of all modules see each other.
%define ORB_USING
"using Orbelantine.Swig.common;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.bluetooth;
using Orbelantine.Swig.input;
using Orbelantine.Swig.audio;
"
%enddef
%pragma(csharp) imclassimports=ORB_USING
%pragma(csharp) moduleimports=ORB_USING
%typemap(csimports) SWIGTYPE, SWIGTYPE *, SWIGTYPE &, SWIGTYPE &&, SWIGTYPE [], SWIGTYPE (CLASS::*), enum SWIGTYPE ORB_USING
