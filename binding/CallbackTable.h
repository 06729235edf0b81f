// The callback families of the `common` module, a row each:
//   ORB_CALLBACK_FAMILY(NAME, result, (types), (parameters), (arguments))
// Read by the binding generator and by binding/CallbackFamilies.h, which give the macro its
// meaning; hence no include guard.

ORB_CALLBACK_FAMILY(ErrorCodeCallback, void, (boost::system::error_code),
                    (boost::system::error_code code), (code))
