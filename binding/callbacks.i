// The callback families: for each row of the table a callable value NAME, the host's
// implementation NAMEImpl (a director), and the event source SignalNAME.

%{
#include "binding/CallbackFamilies.h"
%}

#ifndef ORB_CALLBACKS_DECLARED
#define ORB_CALLBACKS_DECLARED
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
#endif

%define ORB_CALLBACK_FAMILY(NAME, RESULT, TYPES, PARAMETERS, ARGUMENTS)
%feature("director") NAME ## Impl;

struct NAME ## Impl {
  virtual ~NAME ## Impl();
  virtual void pin() = 0;
  virtual bool unpin() = 0;
  virtual RESULT call PARAMETERS = 0;
};

namespace boost {

template<> class function< RESULT TYPES > {
public:
  function(boost::function< RESULT TYPES > const &other);
  %extend {
    function(NAME ## Impl *impl) {
      return new boost::function< RESULT TYPES >(orbelantine::binding::hold(impl));
    }
    RESULT call PARAMETERS {
      return (*$self) ARGUMENTS;
    }
  }
};

namespace signals2 {

%nodefaultctor signal< RESULT TYPES >;
template<> class signal< RESULT TYPES > {
public:
  virtual ~signal();
  %extend {
    boost::signals2::connection connect(boost::function< RESULT TYPES > *slot) {
      return orbelantine::binding::connect(*$self, slot);
    }
    boost::signals2::connection connect(int group, boost::function< RESULT TYPES > *slot) {
      return orbelantine::binding::connect(*$self, group, slot);
    }
    RESULT call PARAMETERS {
      return orbelantine::binding::fire< RESULT TYPES >(*$self) ARGUMENTS;
    }
    unsigned int num_slots() {
      return static_cast< unsigned int >($self->num_slots());
    }
  }
  void disconnect_all_slots();
  bool empty() const;
};

} }

%template(NAME) boost::function< RESULT TYPES >;
%template(Signal ## NAME) boost::signals2::signal< RESULT TYPES >;
%enddef

%include "binding/CallbackTable.h"
