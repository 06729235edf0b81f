// Objects held by boost::shared_ptr on both sides; ORB_SHARED(T) stands before T's declaration in
// each module that names it.

%include <boost_shared_ptr.i>

%define ORB_SHARED(TYPE)
%shared_ptr(TYPE)
// What a host's override returns stays reachable until the native caller has taken its reference.
%typemap(csdirectorout) boost::shared_ptr< TYPE >
    "$typemap(cstype, TYPE).getCPtr(global::Orbelantine.Swig.NativeObject.Keep($cscall)).Handle"
%enddef
