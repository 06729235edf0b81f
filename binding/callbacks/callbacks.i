// The callback families: for each row of a module's table a callable value NAME, the host's
// implementation NAMEImpl (a director), and the event source SignalNAME.

%{
#include "binding/callbacks/CallbackFamilies.h"
%}

namespace boost {
template <class S> class function;
namespace signals2 {

class connection {
public:
  connection();
  ~connection();
  bool connected() const;
  bool blocked() const;
  void disconnect() const;
};

template <class S> class signal;
}
}

typedef std::wstring wstring_director;
typedef std::map< std::string, std::string > stdMapStringString;
typedef std::map< std::string, std::wstring > stdMapStringWstring;
typedef std::map< unsigned int, std::wstring > stdMapUintWstring;
typedef std::map< std::wstring, std::wstring > stdMapWstringWstring;

// Written out again in the wrappers, so that the texts name the types (binding/MendWrappers.cmake).
typedef std::vector< uint8_t > vectorUint8;
typedef boost::function< void (int) > functionInt;
typedef boost::function< void (boost::system::error_code) > functionErrorCode;
typedef boost::function< void (std::string) > functionString;
typedef boost::function< void (std::string,boost::system::error_code) > functionStringErrorCode;

// Names for the arguments of a signature with COUNT of them.
%define ORB_PARAMETERS_0() () %enddef
%define ORB_PARAMETERS_1(A) (A first) %enddef
%define ORB_PARAMETERS_2(A, B) (A first, B second) %enddef
%define ORB_PARAMETERS_3(A, B, C) (A first, B second, C third) %enddef
%define ORB_PARAMETERS_4(A, B, C, D) (A first, B second, C third, D fourth) %enddef
%define ORB_PARAMETERS_5(A, B, C, D, E) (A first, B second, C third, D fourth, E fifth) %enddef
%define ORB_ARGUMENTS_0 () %enddef
%define ORB_ARGUMENTS_1 (first) %enddef
%define ORB_ARGUMENTS_2 (first, second) %enddef
%define ORB_ARGUMENTS_3 (first, second, third) %enddef
%define ORB_ARGUMENTS_4 (first, second, third, fourth) %enddef
%define ORB_ARGUMENTS_5 (first, second, third, fourth, fifth) %enddef

%define ORB_CALLBACK_FAMILY(NAME, RESULT, COUNT, TYPES)
%feature("director") NAME ## Impl;

struct NAME ## Impl {
  virtual ~NAME ## Impl();
  virtual void pin() = 0;
  virtual bool unpin() = 0;
  virtual RESULT call ORB_PARAMETERS_ ## COUNT TYPES = 0;
};

namespace boost {

template<> class function< RESULT TYPES > {
public:
  function(boost::function< RESULT TYPES > const &other);
  %extend {
    function(NAME ## Impl *impl) {
      return new boost::function< RESULT TYPES >(orbelantine::binding::hold(impl));
    }
    RESULT call ORB_PARAMETERS_ ## COUNT TYPES {
      return (*$self) ORB_ARGUMENTS_ ## COUNT;
    }
  }
};

namespace signals2 {

%nodefaultctor signal< RESULT TYPES >;
template<> class signal< RESULT TYPES > {
public:
  %extend {
    virtual ~signal() {
      orbelantine::binding::destroy($self);
    }
    boost::signals2::connection connect(boost::function< RESULT TYPES > *slot) {
      return orbelantine::binding::connect(*$self, slot);
    }
    boost::signals2::connection connect(int group, boost::function< RESULT TYPES > *slot) {
      return orbelantine::binding::connect(*$self, group, slot);
    }
    RESULT call ORB_PARAMETERS_ ## COUNT TYPES {
      return orbelantine::binding::fire< RESULT TYPES >(*$self) ORB_ARGUMENTS_ ## COUNT;
    }
    unsigned int num_slots() {
      return orbelantine::binding::slotCount(*$self);
    }
    void disconnect_all_slots() {
      orbelantine::binding::disconnectAll(*$self);
    }
    bool empty() {
      return orbelantine::binding::isEmpty(*$self);
    }
  }
};

} }

%template(NAME) boost::function< RESULT TYPES >;
%template(Signal ## NAME) boost::signals2::signal< RESULT TYPES >;
%enddef

// A completion may be left out.
%typemap(in) boost::function< void (boost::system::error_code) > completion, boost::function< void (boost::system::error_code) > callback
%{ $1 = orbelantine::binding::completionOf((const boost::function< void (boost::system::error_code) > *)$input); %}
