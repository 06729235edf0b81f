// Small values and probes of the foundation.

%{
#include "core/common/types/CMacAddress.h"
#include "core/common/probes/FocusAssist.h"
%}

namespace orbelantine {

class CMacAddress {
public:
  CMacAddress();
  CMacAddress(const wchar_t *text);
  CMacAddress(orbelantine::CMacAddress const &other);
  CMacAddress(uint64_t number);
  virtual ~CMacAddress();
  std::wstring getStdStringAddress();
  uint64_t getUllAddress();
  bool isEmpty();
};

int getFocusAssistProfile();

}
