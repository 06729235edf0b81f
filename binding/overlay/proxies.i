// What every proxy is on the host's side (binding/csharp/NativeObject.cs): its handle is a property
// that refuses what is disposed, and is taken by the one thread that deletes the object. What is
// borrowed keeps its owner, and what is shown for one call ends with it.

%typemap(csbase, notderived="1") SWIGTYPE "global::Orbelantine.Swig.NativeObject"

// UPCAST is the suffix of the export that makes a handle of the base class, which the base owns if
// BASE_OWNS.
%define ORB_PROXY(UPCAST, BASE_OWNS, TYPE...)
%typemap(csbody) TYPE %{
  private global::System.IntPtr swigHandle;
  private bool swigOwns;

  internal $csclassname(global::System.IntPtr cPtr, bool cMemoryOwn) {
    swigOwns = cMemoryOwn;
    swigHandle = cPtr;
  }

  private global::System.Runtime.InteropServices.HandleRef swigCPtr {
    get { return swigUse(swigHandle); }
  }

  internal static global::System.Runtime.InteropServices.HandleRef getCPtr($csclassname obj) {
    return (obj == null) ? new global::System.Runtime.InteropServices.HandleRef(null, global::System.IntPtr.Zero) : obj.swigCPtr;
  }
%}

%typemap(csbody_derived) TYPE %{
  private global::System.IntPtr swigHandle;
  private bool swigOwns;

  internal $csclassname(global::System.IntPtr cPtr, bool cMemoryOwn) : base($imclassname.$csclazzname##UPCAST(cPtr), BASE_OWNS) {
    swigOwns = cMemoryOwn;
    swigHandle = cPtr;
  }

  private global::System.Runtime.InteropServices.HandleRef swigCPtr {
    get { return swigUse(swigHandle); }
  }

  internal static global::System.Runtime.InteropServices.HandleRef getCPtr($csclassname obj) {
    return (obj == null) ? new global::System.Runtime.InteropServices.HandleRef(null, global::System.IntPtr.Zero) : obj.swigCPtr;
  }
%}

%typemap(csdisposing, methodname="Dispose", methodmodifiers="protected", parameters="bool disposing") TYPE {
    global::System.Runtime.InteropServices.HandleRef swigCPtr = swigTake(ref swigHandle);
    if (swigOwns && swigCPtr.Handle != global::System.IntPtr.Zero) {
      $imcall;
    }
  }

%typemap(csdisposing_derived, methodname="Dispose", methodmodifiers="protected", parameters="bool disposing") TYPE {
    global::System.Runtime.InteropServices.HandleRef swigCPtr = swigTake(ref swigHandle);
    if (swigOwns && swigCPtr.Handle != global::System.IntPtr.Zero) {
      $imcall;
    }
    base.Dispose(disposing);
  }
%enddef

ORB_PROXY(SWIGUpcast, false, SWIGTYPE)

// At the process's end native code goes with it: a thread that it would have to wait for may be held
// at the door of the runtime.
%typemap(csdispose) SWIGTYPE %{
  ~$csclassname() {
    if (!global::System.Environment.HasShutdownStarted)
      Dispose(false);
  }

  public void Dispose() {
    swigRefuseWhileLent();
    Dispose(true);
    global::System.GC.SuppressFinalize(this);
  }
%}

// A reference, and a member, is a part of the object that gives it.
%typemap(csout, excode=SWIGEXCODE) SWIGTYPE & {
    $csclassname ret = global::Orbelantine.Swig.NativeObject.swigPart(new $csclassname($imcall, $owner), this);$excode
    return ret;
  }
%typemap(csvarout, excode=SWIGEXCODE2) SWIGTYPE * %{
    get {
      global::System.IntPtr cPtr = $imcall;
      $csclassname ret = (cPtr == global::System.IntPtr.Zero) ? null : global::Orbelantine.Swig.NativeObject.swigPart(new $csclassname(cPtr, $owner), this);$excode
      return ret;
    } %}

%typemap(csdirectorin,
         pre="    $csclassname shown$iminput = global::Orbelantine.Swig.NativeObject.swigShown(new $csclassname($iminput, false));",
         post="      shown$iminput.swigExpire();") SWIGTYPE & "shown$iminput"
