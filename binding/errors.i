// Error codes, their categories, and a class for each area of the numbering.

%{
#include "core/common/errors/ErrorCode.h"
#include "core/common/errors/ErrorAreas.h"
#include "core/common/errors/SwigErrorCategory.h"
%}

namespace boost { namespace system {

%nodefaultctor error_category;
%nodefaultdtor error_category;
class error_category {
public:
  virtual const char *name() const;
  virtual std::string message(int value) const;
};

class error_code {
public:
  error_code();
  error_code(int value, boost::system::error_category const &category);
  error_code(boost::system::error_code const &other);
  int value() const;
  std::string message() const;
};

} }

// The native category has no base class; the host's upcast gives back what it is given.
%native(error_category_SWIGUpcast) void *error_category_SWIGUpcast(void *category);
%wrapper %{
extern "C"
SWIGEXPORT void * SWIGSTDCALL CSharp_OrbelantinefSwigfcommon_error_category_SWIGUpcast___(void *category) {
  return category;
}
%}

namespace orbelantine {

// Asked of the library rather than compiled into the host.
%csconst(0) ORB_ERROR_BASE;
%constant int ORB_ERROR_BASE = orbelantine::kErrorBase;

class SwigErrorCategory : public boost::system::error_category {
public:
  SwigErrorCategory();
  const char *name() const;
  std::string message(int value) const;
  boost::system::error_code error_code(int value) const;
};

%typemap(csvarout) SwigErrorCategory * %{
    get { return new SwigErrorCategory($imcall, false); } %}
%immutable GlobalCategory;
extern SwigErrorCategory GlobalCategory;

}

%define ORB_ERROR_AREA(AREA, FIRST, HEAD, ...)
namespace orbelantine {
struct AREA {
  enum Code : int { Success = 0, HEAD = FIRST, __VA_ARGS__ };
  static boost::system::error_code getErrorCode(int value);
};
}
%enddef
%include "core/common/errors/ErrorAreas.inc"
