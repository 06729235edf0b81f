// Text across the boundary, the same for every form in which a signature may name it. Null is the
// empty text for text objects; a bare pointer passes as it is. Text that goes out, as a result or
// as a director's argument, passes through the module's callback, which copies it before the
// native text dies.

%define ORB_TEXT_PROXY(NATIVE, MARSHAL, GIVE, TYPES...)
%typemap(ctype, out="void *") TYPES "NATIVE"
%typemap(imtype, out="global::System.IntPtr",
         inattributes="[global::System.Runtime.InteropServices.MarshalAs(global::Orbelantine.Swig.NativeText.MARSHAL)]") TYPES "string"
%typemap(cstype) TYPES "string"
%typemap(csin) TYPES "$csinput"
%typemap(csout, excode=SWIGEXCODE) TYPES {
    string ret = global::Orbelantine.Swig.NativeText.Take($imcall);$excode
    return ret;
  }
%typemap(csvarin, excode=SWIGEXCODE2) TYPES %{
    set {
      $imcall;$excode
    } %}
%typemap(csvarout, excode=SWIGEXCODE2) TYPES %{
    get {
      string ret = global::Orbelantine.Swig.NativeText.Take($imcall);$excode
      return ret;
    } %}
%typemap(csdirectorin) TYPES "global::Orbelantine.Swig.NativeText.Take($iminput)"
%typemap(csdirectorout) TYPES "global::Orbelantine.Swig.NativeText.GIVE($cscall)"
%enddef

%{
#include <string>
%}

ORB_TEXT_PROXY(const char *, MarshalNarrow, GiveNarrow, std::string, const std::string &, std::string &)
ORB_TEXT_PROXY(char *, MarshalNarrow, GiveNarrow, char *, const char *)
ORB_TEXT_PROXY(const char16_t *, MarshalWide, GiveWide, std::wstring, const std::wstring &, std::wstring &, const wchar_t *)

namespace std {
%naturalvar string;
%naturalvar wstring;
class string;
class wstring;
}

// Narrow
%typemap(in) std::string %{ if ($input) $1.assign($input); %}
%typemap(in) const std::string & (std::string text), std::string & (std::string text)
%{ if ($input) text.assign($input);
   $1 = &text; %}
%typemap(out) std::string %{ $result = SWIG_csharp_string_callback($1.c_str()); %}
%typemap(out) const std::string &, std::string & %{ $result = SWIG_csharp_string_callback($1->c_str()); %}
%typemap(out) char *, const char * %{ $result = $1 ? SWIG_csharp_string_callback($1) : 0; %}
%typemap(directorin) std::string, const std::string & %{ $input = SWIG_csharp_string_callback($1.c_str()); %}
%typemap(directorin) char *, const char * %{ $input = $1 ? SWIG_csharp_string_callback($1) : 0; %}
%typemap(directorout) std::string %{ if ($input) $result.assign((const char *)$input); %}
%typemap(typecheck) std::string, const std::string &, std::string & = char *;

// Wide
%typemap(in) std::wstring %{ $1 = orbelantine::binding::fromUtf16($input); %}
%typemap(in) const std::wstring & (std::wstring text), std::wstring & (std::wstring text)
%{ text = orbelantine::binding::fromUtf16($input);
   $1 = &text; %}
%typemap(in) const wchar_t * (std::wstring text)
%{ text = orbelantine::binding::fromUtf16($input);
   $1 = text.data(); %}
%typemap(out) std::wstring %{ $result = SWIG_csharp_wstring($1); %}
%typemap(out) const std::wstring &, std::wstring & %{ $result = SWIG_csharp_wstring(*$1); %}
%typemap(directorin) std::wstring, const std::wstring & %{ $input = SWIG_csharp_wstring($1); %}
%typemap(directorout) std::wstring %{ $result = orbelantine::binding::fromUtf16((const char16_t *)$input); %}
%typemap(typecheck) std::wstring, const std::wstring &, std::wstring &, const wchar_t * = char *;
