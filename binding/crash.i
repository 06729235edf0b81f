// Crash records.

%{
#include "core/common/crash/CExceptionHandler.h"
%}

// A handler that is set stays so without a reference of the host's: the collector would take it off.
%typemap(cscode) orbelantine::CExceptionHandler %{
  private static readonly global::System.Collections.Generic.HashSet<CExceptionHandler> SetHandlers =
    new global::System.Collections.Generic.HashSet<CExceptionHandler>();
%}
%typemap(csout, excode=SWIGEXCODE) bool SetHandler {
    bool ret = $imcall;$excode
    if (ret)
      lock (SetHandlers)
        SetHandlers.Add(this);
    return ret;
  }
%typemap(csout, excode=SWIGEXCODE) void UnsetHandler {
    $imcall;$excode
    lock (SetHandlers)
      SetHandlers.Remove(this);
  }

namespace orbelantine {

class CExceptionHandler {
public:
  CExceptionHandler(bool unused = false, bool takeAction = true);
  virtual ~CExceptionHandler();
  bool SetHandler();
  void UnsetHandler();
  std::vector< std::wstring > GetLatestCrashes();
  std::wstring GetVersion();
  void Crash();
};

}
