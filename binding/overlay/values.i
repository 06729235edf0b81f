// Plain values and addresses.

// Sizes are unsigned 32-bit for the host.
%typemap(ctype) size_t, const size_t & "unsigned int"

// An address without a type of its own is an address for the host too.
%apply void *VOID_INT_PTR { void *, uint8_t *, const uint8_t *, unsigned char *, const unsigned char * }
