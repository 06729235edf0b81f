// Objects held by boost::shared_ptr on both sides; ORB_SHARED(T) stands before T's declaration in
// each module that names it.

%include <boost_shared_ptr.i>

%define ORB_SHARED(TYPE)
%shared_ptr(TYPE)
ORB_PROXY(SWIGSmartPtrUpcast, true, TYPE)
// One that the host overrides is pinned while native code holds it; what an override returns stays
// reachable until the native caller has taken its reference.
%typemap(csin,
         pre="    global::Orbelantine.Swig.Loan loan$csinput = global::Orbelantine.Swig.Loan.Of($csinput, $typemap(cstype, TYPE).getCPtr($csinput));",
         post="      loan$csinput.End();")
    boost::shared_ptr< TYPE >, boost::shared_ptr< TYPE > &, boost::shared_ptr< TYPE > const & "loan$csinput.Handle"
%typemap(csdirectorout) boost::shared_ptr< TYPE >
    "global::Orbelantine.Swig.Loan.Return<$typemap(cstype, TYPE)>($cscall, $typemap(cstype, TYPE).getCPtr)"
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
