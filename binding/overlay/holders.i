// Objects held by boost::shared_ptr on both sides; ORB_SHARED(T) stands before T's declaration in
// each module that names it.

%include <boost_shared_ptr.i>

%define ORB_SHARED(TYPE)
%shared_ptr(TYPE)
// What a host's override returns stays reachable until the native caller has taken its reference.
%typemap(csdirectorout) boost::shared_ptr< TYPE >
    "$typemap(cstype, TYPE).getCPtr(global::Orbelantine.Swig.NativeObject.Keep($cscall)).Handle"
%enddef

// A context has no class of its own; none is null.
%typemap(out) boost::shared_ptr< void >
%{ boost::shared_ptr< void > context($1);
   $result = context ? new boost::shared_ptr< void >(context) : 0; %}
%typemap(directorout) boost::shared_ptr< void > %{ if ($input) $result = *($&1_ltype)$input; %}
%typemap(csout, excode=SWIGEXCODE) boost::shared_ptr< void > {
    global::System.IntPtr cPtr = $imcall;
    $&csclassname ret = (cPtr == global::System.IntPtr.Zero) ? null : new $&csclassname(cPtr, true);$excode
    return ret;
  }
