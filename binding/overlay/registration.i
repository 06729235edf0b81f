// What a module registers for text, beside SWIG's own two exception tables: one callback for
// narrow text and one for null-terminated UTF-16, and nothing else. What a callback returns is
// opaque here and goes to the host as it is.
//
// Built with SWIG_CSHARP_NO_STRING_HELPER, which leaves out SWIG's own helper.

%insert(runtime) %{
#include "binding/Utf16.h"

typedef void * (SWIGSTDCALL* SWIG_CSharpStringHelperCallback)(const char *);
typedef void * (SWIGSTDCALL* SWIG_CSharpWStringHelperCallback)(const char16_t *);
static SWIG_CSharpStringHelperCallback SWIG_csharp_string_callback = NULL;
static SWIG_CSharpWStringHelperCallback SWIG_csharp_wstring_callback = NULL;

static void * SWIGUNUSED SWIG_csharp_wstring(const std::wstring &text) {
  return SWIG_csharp_wstring_callback(orbelantine::binding::toUtf16(text).c_str());
}

extern "C"
SWIGEXPORT void SWIGSTDCALL SWIGRegisterStringCallback_$module(SWIG_CSharpStringHelperCallback callback) {
  SWIG_csharp_string_callback = callback;
}

extern "C"
SWIGEXPORT void SWIGSTDCALL SWIGRegisterWStringCallback_$module(SWIG_CSharpWStringHelperCallback callback) {
  SWIG_csharp_wstring_callback = callback;
}
%}

%pragma(csharp) imclasscode=%{
  protected class SWIGStringHelper {
    [global::System.Runtime.InteropServices.DllImport("$dllimport", EntryPoint="SWIGRegisterStringCallback_$module")]
    public static extern void SWIGRegisterStringCallback_$module(global::Orbelantine.Swig.NativeText.Callback callback);

    [global::System.Runtime.InteropServices.DllImport("$dllimport", EntryPoint="SWIGRegisterWStringCallback_$module")]
    public static extern void SWIGRegisterWStringCallback_$module(global::Orbelantine.Swig.NativeText.Callback callback);

    static SWIGStringHelper() {
      global::Orbelantine.Swig.LibraryVersion.Check();
      SWIGRegisterStringCallback_$module(global::Orbelantine.Swig.NativeText.Narrow);
      SWIGRegisterWStringCallback_$module(global::Orbelantine.Swig.NativeText.Wide);
    }
  }

  static protected SWIGStringHelper swigStringHelper = new SWIGStringHelper();
%}
