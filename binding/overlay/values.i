// Plain values and addresses.

// Sizes are unsigned 32-bit for the host.
%typemap(ctype) size_t, const size_t & "unsigned int"

// An address without a type of its own is an address for the host too.
%apply void *VOID_INT_PTR { void *, uint8_t *, const uint8_t *, unsigned char *, const unsigned char * }
// A director's address result is the host's own memory.
%typemap(directorout) void * %{ $result = ($1_ltype)$input; %}

// A reference to nothing is reported before anything is touched.
%typemap(in, canthrow=1) SWIGTYPE & %{ $1 = ($1_ltype)$input;
  if (!$1) {
    SWIG_CSharpSetPendingExceptionArgument(SWIG_CSharpArgumentNullException, "$1_type type is null", 0);
    return $null;
  } %}
